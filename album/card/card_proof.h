#pragma once

#include <string>
#include <system_error>

namespace taloram {

// Whether one file is a copy of another.
struct comparison_t {
    bool is_copy = false;
    std::error_code original_unread;  // why not, where the system told
    std::error_code copy_unread;
};

// Reads both files from the disk to their ends and compares every byte. What the system still had to write of the copy
// is written first, and what it keeps of both in memory is dropped, as far as it can. One file under two names is no
// copy of itself.
[[nodiscard]] comparison_t compare_on_disk(const std::string& original, const std::string& copy);

}  // namespace taloram
