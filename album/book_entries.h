#pragma once

#include <string>
#include <vector>

namespace taloram {

// One album or book of a book's directory, as lists show it. Texts are in the locale's encoding.
struct book_entry_t {
    bool is_album = false;
    std::string name;
    std::string path;
    std::string count;  // movies and photographs, albums only
    std::string title;
    std::string head_line;  // first line of the opening text
};

// The subdirectories of `book` that have txt/, in the reverse of their sorted order. False when `book` can't be listed.
[[nodiscard]] bool list_entries(std::vector<book_entry_t>& entries, const std::string& book);

}  // namespace taloram
