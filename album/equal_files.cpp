#include "album/equal_files.h"

#include <algorithm>
#include <array>
#include <functional>
#include <string_view>

#include "libutils/files/open_file.h"

namespace taloram {

void equal_files_t::add(const std::string& path, uint64_t length) {
    by_length_[length].unread.push_back({count_++, path});
}

std::vector<size_t> equal_files_t::like(const std::string& path, uint64_t length) {
    const auto equally_long = by_length_.find(length);
    if (equally_long == by_length_.end()) {
        return {};
    }
    auto& [unread, by_hash] = equally_long->second;
    for (const unread_t& file : unread) {
        if (const std::optional<uint64_t> hash = hash_of_edges(file.path)) {
            by_hash[*hash].push_back(file.number);
        }
    }
    unread.clear();
    const std::optional<uint64_t> wanted = hash_of_edges(path);
    const auto found = wanted ? by_hash.find(*wanted) : by_hash.end();
    return found == by_hash.end() ? std::vector<size_t>() : found->second;
}

std::optional<uint64_t> equal_files_t::hash_of_edges(const std::string& path) {
    constexpr size_t block = 4096;  // bytes
    const libutils::open_file_t file(path);
    struct stat status {};
    if (file.check_regular() || file.query(status)) {
        return std::nullopt;
    }
    std::array<char, 2 * block> bytes{};
    const ssize_t first = file.read_at(bytes.data(), block, 0);
    const ssize_t last = file.read_at(bytes.data() + block, block, std::max<off_t>(status.st_size - off_t{block}, 0));
    if (first < 0 || last < 0) {
        return std::nullopt;
    }
    return std::hash<std::string_view>()({bytes.data(), bytes.size()});
}

}  // namespace taloram
