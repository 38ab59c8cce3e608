#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace taloram {

// Finds among many files those that may hold the same as another one, whatever they are called.
class equal_files_t {
  public:
    // `length` in bytes. Files are counted from 0 in the order in which they are added.
    void add(const std::string& path, uint64_t length);

    // The numbers, in their order, of files of the same length whose first and last blocks are equal too. The blocks of
    // a file are read once, and only when its length is asked for. None when `path` can't be read.
    [[nodiscard]] std::vector<size_t> like(const std::string& path, uint64_t length);

  private:
    struct unread_t {
        size_t number;
        std::string path;
    };
    struct equally_long_t {
        std::vector<unread_t> unread;
        std::map<uint64_t, std::vector<size_t>> by_hash;  // of the first and last blocks
    };

    // Nothing when it is no file that can be read.
    [[nodiscard]] static std::optional<uint64_t> hash_of_edges(const std::string& path);

    size_t count_ = 0;
    std::unordered_map<uint64_t, equally_long_t> by_length_;
};

}  // namespace taloram
