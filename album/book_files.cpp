#include "album/book_files.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <functional>
#include <list>
#include <string_view>

#include "album/album_layout.h"
#include "album/album_walk.h"
#include "album/engine_step.h"
#include "libutils/files/open_file.h"

namespace taloram {

namespace {

bool add_files_of_kind(std::vector<book_file_t>& files, const std::string& album, const char* kind) {
    const std::string directory = entry_path(album, kind);
    std::list<std::string> names;
    if (!list_if_there(names, directory)) {
        return false;
    }
    for (const std::string& name : names) {
        struct stat status {};
        if (lstat(entry_path(directory, name).c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0) {
            files.push_back({album, kind, name, static_cast<uint64_t>(status.st_size)});
        }
    }
    return true;
}

}  // namespace

std::string book_file_t::path_in_album() const {
    return entry_path(kind, name);
}

std::string book_file_t::path() const {
    return entry_path(album, path_in_album());
}

bool list_book_files(std::vector<book_file_t>& files, const std::string& book) {
    files.clear();
    const auto add_album = [&files](const std::string& album) {
        bool good = true;
        for (const char* kind : {layout::original, layout::movie, layout::text}) {
            good = add_files_of_kind(files, album, kind) && good;
        }
        return good;
    };
    return visit_albums(book, {add_album, [](const std::string& /*book*/) { return true; }}).succeeded;
}

void book_contents_t::add(book_file_t file) {
    files_.push_back(std::move(file));
    by_length_[files_.back().length].unread.push_back(&files_.back());
}

std::optional<book_contents_t::edges_t> book_contents_t::read_edges(const std::string& path) {
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
    return edges_t{std::hash<std::string_view>()({bytes.data(), bytes.size()}), status.st_dev, status.st_ino};
}

std::vector<const book_file_t*> book_contents_t::like(const std::string& path, uint64_t length) {
    std::vector<const book_file_t*> found;
    const auto equally_long = by_length_.find(length);
    if (equally_long == by_length_.end()) {
        return found;
    }
    auto& [unread, by_hash] = equally_long->second;
    for (const book_file_t* file : unread) {
        if (const std::optional<edges_t> edges = read_edges(file->path())) {
            by_hash[edges->hash].push_back({file, *edges});
        }
    }
    unread.clear();
    const std::optional<edges_t> wanted = read_edges(path);
    if (wanted) {
        for (const auto& [file, edges] : by_hash[wanted->hash]) {
            if (edges.device != wanted->device || edges.inode != wanted->inode) {
                found.push_back(file);
            }
        }
    }
    return found;
}

}  // namespace taloram
