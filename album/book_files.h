#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace taloram {

// A file that an album holds as it came from the camera.
struct book_file_t {
    std::string album;           // path
    const char* kind = nullptr;  // layout::original, layout::movie or layout::text
    std::string name;
    uint64_t length = 0;  // bytes

    [[nodiscard]] std::string path_in_album() const;
    [[nodiscard]] std::string path() const;
};

// Lists the originals, movies and other files of an album or of all albums below a book, in the order of albums, kinds
// and names. Nothing is opened. Links and empty files are left out: they are no copies of anything. False, after
// a report, when a directory can't be listed; the list then holds what the others have.
[[nodiscard]] bool list_book_files(std::vector<book_file_t>& files, const std::string& book);

}  // namespace taloram
