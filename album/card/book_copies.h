#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "album/book_files.h"
#include "album/card/card_albums.h"
#include "album/card/card_files.h"
#include "album/equal_files.h"

namespace taloram {

// What a book holds, to be compared with the files of cards.
class book_copies_t {
  public:
    explicit book_copies_t(noted_sums_t& sums)
        : sums_(sums), contents_([this](size_t index) { return files_[index].path(); }) {}
    ~book_copies_t() = default;
    book_copies_t(const book_copies_t&) = delete;
    book_copies_t& operator=(const book_copies_t&) = delete;

    // Lists the files of a book; what a link leads to on one of the cards is no copy. False, after a report, when
    // a directory of the book can't be listed.
    [[nodiscard]] bool load(const std::string& book, const std::vector<std::string>& cards);

    // The paths of those that hold files.
    [[nodiscard]] std::set<std::string> albums() const;

    // An import has brought a file.
    void add(book_file_t file);

    [[nodiscard]] const book_file_t& at(size_t index) const { return files_[index]; }

    // False for what was added since the book was listed.
    [[nodiscard]] bool was_held(size_t index) const { return index < held_; }

    // The index of a file that holds the same by its noted sum, which saves reading it, or else by its bytes.
    [[nodiscard]] std::optional<size_t> find(const card_file_t& file);

    // The indices of all that may hold the same.
    [[nodiscard]] std::vector<size_t> like(const card_file_t& file) { return contents_.like(file.path(), file.length); }

  private:
    [[nodiscard]] bool is_copy(const std::string& path, std::string& sum, const book_file_t& copy);

    noted_sums_t& sums_;
    std::vector<book_file_t> files_;
    equal_files_t contents_;  // of `files_`, by the same indices
    size_t held_ = 0;
};

}  // namespace taloram
