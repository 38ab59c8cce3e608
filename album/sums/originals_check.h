#pragma once

#include <string>
#include <vector>

#include "album/progress.h"
#include "album/sums/verification.h"

namespace taloram {

// What comparing the originals of one album with its sums told.
struct checked_album_t {
    std::string path;
    verify_result_t result;
    std::vector<flawed_file_t> flaws;
    std::string failure;  // the first line that was reported of an album whose sums or directories can't be read
};

struct originals_check_t {
    std::vector<checked_album_t> albums;
    std::string failure;  // of a directory above the albums, as reported
    bool is_good = true;
    bool stopped = false;

    // Files that were compared with their sums.
    [[nodiscard]] size_t count() const;
};

// verify_album() for an album, or for every album below a book.
[[nodiscard]] originals_check_t check_originals(const std::string& directory, progress_signals_t& progress);

}  // namespace taloram
