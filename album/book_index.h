#pragma once

#include <string>

namespace taloram {

// Writes a book's index.html: its texts and one row for each subdirectory that has txt/head.txt. "" is the current
// directory.
[[nodiscard]] bool makehtmlbook(const std::string& book);

}  // namespace taloram
