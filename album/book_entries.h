#pragma once

#include <string>
#include <system_error>
#include <vector>

#include "album/texts/comment_store.h"

namespace taloram {

// One album or book of a book's directory, as lists show it. Texts are in the locale's encoding.
struct book_entry_t {
    bool is_album = false;
    std::string name;
    std::string path;
    std::string count;  // movies and photographs, albums only
    std::string title;
    std::string head_line;  // first line of the opening text
    unread_text_t unread;   // what of these texts is there and can't be read; the texts are empty then
};

// The subdirectories of `book` that have txt/, in the reverse of their sorted order. A text that can't be read is
// reported; a failure is that of the listing.
[[nodiscard]] std::error_code list_book_entries(std::vector<book_entry_t>& entries, const std::string& book);

// The first line of an album's count.txt, "" without one.
[[nodiscard]] unread_text_t load_count(std::string& count, const std::string& album);

}  // namespace taloram
