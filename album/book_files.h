#pragma once

#include <sys/types.h>

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
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

// Finds the files of a book that may hold the same as another file, whatever they are called.
class book_contents_t {
  public:
    void add(book_file_t file);

    // Those of the same length whose first and last blocks are equal too, in the order in which they were added; not
    // the file itself, whatever other name leads to it. Each file's blocks are read at most once, and only when its
    // length is looked for. The pointers stay good. None when `path` can't be read.
    [[nodiscard]] std::vector<const book_file_t*> like(const std::string& path, uint64_t length);

  private:
    // What tells most files of one length apart without reading the whole of them.
    struct edges_t {
        uint64_t hash = 0;
        dev_t device = 0;
        ino_t inode = 0;
    };
    struct looked_at_t {
        const book_file_t* file;
        edges_t edges;
    };
    struct equally_long_t {
        std::vector<const book_file_t*> unread;
        std::map<uint64_t, std::vector<looked_at_t>> by_hash;
    };

    // Nothing when it is no file that can be read.
    [[nodiscard]] static std::optional<edges_t> read_edges(const std::string& path);

    std::deque<book_file_t> files_;
    std::unordered_map<uint64_t, equally_long_t> by_length_;
};

}  // namespace taloram
