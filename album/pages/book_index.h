#pragma once

#include <string>

namespace taloram {

// Writes a book's index.html: its texts and one row for each subdirectory that has txt/head.txt. "" is the current
// directory. When the listing fails, or a text is there and can't be read, the old page stays. A subdirectory that is
// closed to the user has no row and is named.
[[nodiscard]] bool makehtmlbook(const std::string& book);

// The same; the names of closed subdirectories may have been told by who calls.
enum class closed_t {
    report,
    pass_over,
};
[[nodiscard]] bool write_book_page(const std::string& book, closed_t closed);

}  // namespace taloram
