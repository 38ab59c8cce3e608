#include "album/equal_files.h"

#include <algorithm>
#include <array>
#include <functional>
#include <string_view>

#include "libutils/files/open_file.h"

namespace taloram {

std::vector<size_t> equal_files_t::like(const std::string& path, uint64_t length) {
    std::vector<size_t> found;
    const auto [begin, end] = by_length_.equal_range(length);
    const std::optional<uint64_t> wanted = begin == end ? std::nullopt : hash_of_edges(path);
    if (!wanted) {
        return found;
    }
    for (auto entry = begin; entry != end; ++entry) {
        auto& [number, is_read, hash] = entry->second;
        if (!is_read) {
            hash = hash_of_edges(path_of_(number));
            is_read = true;
        }
        if (hash == wanted) {
            found.push_back(number);
        }
    }
    return found;
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
