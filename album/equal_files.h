#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace taloram {

// Finds among many files those that may hold the same as another one, whatever they are called.
class equal_files_t {
  public:
    // The files are numbered from 0 in the order in which they are added; `path_of` tells where each is.
    explicit equal_files_t(std::function<std::string(size_t number)> path_of) : path_of_(std::move(path_of)) {}

    // `length` in bytes.
    void add(uint64_t length) { by_length_.emplace(length, entry_t{by_length_.size(), false, {}}); }

    // The numbers, in their order, of files of the same length whose first and last blocks are equal too. The blocks of
    // a file are read once, and only when its length is asked for. None when `path` can't be read.
    [[nodiscard]] std::vector<size_t> like(const std::string& path, uint64_t length);

  private:
    struct entry_t {
        size_t number;
        bool is_read;
        std::optional<uint64_t> hash;  // of the first and last blocks
    };

    // Nothing when it is no file that can be read.
    [[nodiscard]] static std::optional<uint64_t> hash_of_edges(const std::string& path);

    std::function<std::string(size_t)> path_of_;
    std::multimap<uint64_t, entry_t> by_length_;
};

}  // namespace taloram
