#include "album/turn/pending_turn.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <list>
#include <optional>

#include "album/album_layout.h"
#include "libutils/diagnostics.h"
#include "libutils/files/directory.h"
#include "libutils/files/flush.h"
#include "libutils/system_error.h"

namespace taloram {

namespace {

constexpr const char* begun_prefix = ".taloram-turning-";
constexpr const char* committed_prefix = ".taloram-turned-";
constexpr const char* list_of_photos = "photos";

// A name that no other directory of this process had.
std::string own_name() {
    static unsigned long count = 0;
    return std::to_string(getpid()) + "-" + std::to_string(++count);
}

void remove_tree(const std::string& directory) {
    std::error_code unseen;
    std::filesystem::remove_all(directory, unseen);
}

// Everything in `directory`, and then itself.
std::error_code flush_tree(const std::string& directory) {
    std::list<std::string> kinds;
    if (const std::error_code error = libutils::list_directories(kinds, directory)) {
        return error;
    }
    for (const std::string& kind : kinds) {
        const std::string path = entry_path(directory, kind);
        std::list<std::string> names;
        if (const std::error_code error = libutils::list_files(names, path)) {
            return error;
        }
        names.emplace_back(".");
        for (const std::string& name : names) {
            if (const std::error_code error = libutils::flush(entry_path(path, name))) {
                return error;
            }
        }
    }
    return libutils::flush(directory);
}

// Opens `directory` and holds it. Where the file system refuses locks it is open all the same.
int hold(const std::string& directory) {
    const int descriptor = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor >= 0) {
        static_cast<void>(flock(descriptor, LOCK_SH | LOCK_NB));
    }
    return descriptor;
}

bool is_held(const std::string& directory) {
    const int descriptor = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    const bool held = flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    close(descriptor);
    return held;
}

// A size may lie on another disk, by a link under its directory's name.
std::error_code copy_into_place(const std::string& from, const std::string& to) {
    libgr::jpegdata_t data;
    if (const std::error_code failure = load_file(data, from)) {
        return failure;
    }
    if (const std::error_code failure = save_file(data, to)) {
        return failure;
    }
    if (const std::error_code failure = libutils::flush(to)) {
        return failure;
    }
    return unlink(from.c_str()) == 0 ? std::error_code() : libutils::last_error();
}

bool put_in_place(const std::string& from, const std::string& to) {
    std::error_code failure = std::rename(from.c_str(), to.c_str()) == 0 ? std::error_code() : libutils::last_error();
    if (failure == std::errc::cross_device_link) {
        failure = copy_into_place(from, to);
    }
    if (failure) {
        libutils::report(to, ": its turned file can't be put in place, ", failure.message());
    }
    return !failure;
}

// What is not there is empty.
bool is_listed(const std::error_code& error, const std::string& directory) {
    const bool listed = !error || libutils::is_absent(error);
    if (!listed) {
        libutils::report(directory, ": can't be read, ", error.message());
    }
    return listed;
}

// Puts what is left of `pending`, a committed directory, in place.
bool place_tree(const std::string& album, const std::string& pending) {
    for (const std::string& kind : level_directories("", highest_top_level)) {
        const std::string from = entry_path(pending, kind);
        const std::string to = entry_path(album, kind);
        std::list<std::string> names;
        if (!is_listed(libutils::list_files(names, from), from)) {
            return false;
        }
        if (names.empty()) {
            continue;
        }
        libutils::mkdir(to.c_str());
        for (const std::string& name : names) {
            if (is_exist(original_path(album, name)) && !put_in_place(entry_path(from, name), entry_path(to, name))) {
                return false;
            }
        }
        static_cast<void>(libutils::flush(to));
    }
    return true;
}

// It no longer counts, and then goes.
void end_tree(const std::string& album, const std::string& pending) {
    const std::string ended = entry_path(album, begun_prefix + own_name());
    const bool renamed = std::rename(pending.c_str(), ended.c_str()) == 0;
    // After a power cut it still counts or has ended; it is not there in part.
    static_cast<void>(libutils::flush(album));
    remove_tree(renamed ? ended : pending);
}

// The quarter turns that a committed directory's name tells.
std::optional<unsigned long> committed_count(const std::string& name) {
    const size_t length = std::strlen(committed_prefix);
    const bool told = name.compare(0, length, committed_prefix) == 0 && name.size() > length && name[length] >= '0' &&
                      name[length] <= '3';
    return told ? std::optional<unsigned long>(static_cast<unsigned long>(name[length] - '0')) : std::nullopt;
}

}  // namespace

pending_turn_t::~pending_turn_t() {
    if (!directory_.empty() && !is_committed_) {
        remove_tree(directory_);
    }
    if (lock_ >= 0) {
        close(lock_);
    }
}

std::error_code pending_turn_t::begin(const std::vector<std::string>& photos) {
    std::string directory;
    do {
        directory = entry_path(album_, begun_prefix + own_name());
    } while (::mkdir(directory.c_str(), S_IRWXU) != 0 && errno == EEXIST);
    lock_ = hold(directory);
    if (lock_ < 0) {
        return libutils::last_error();
    }
    directory_ = directory;
    std::vector<std::string> kinds = level_directories("", highest_top_level);
    std::erase_if(kinds, [this](const std::string& kind) { return !is_exist(entry_path(album_, kind)); });
    kinds.emplace_back(list_of_photos);
    for (const std::string& kind : kinds) {
        if (::mkdir(entry_path(directory_, kind).c_str(), S_IRWXU) != 0) {
            return libutils::last_error();
        }
    }
    for (const std::string& photo : photos) {
        const int descriptor = open(path(list_of_photos, photo).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, S_IRUSR);
        if (descriptor < 0) {
            return libutils::last_error();
        }
        close(descriptor);
    }
    return {};
}

std::string pending_turn_t::path(const std::string& kind, const std::string& photo) const {
    return entry_path(entry_path(directory_, kind), photo);
}

std::error_code pending_turn_t::commit(unsigned long count) {
    if (const std::error_code error = flush_tree(directory_)) {
        return error;
    }
    const std::string committed = entry_path(album_, committed_prefix + std::to_string(count) + "-" + own_name());
    if (std::rename(directory_.c_str(), committed.c_str()) != 0) {
        return libutils::last_error();
    }
    directory_ = committed;
    is_committed_ = true;
    static_cast<void>(libutils::flush(album_));
    return {};
}

bool pending_turn_t::place() const {
    return place_tree(album_, directory_);
}

void pending_turn_t::end() {
    if (is_committed_) {
        end_tree(album_, directory_);
    }
}

bool has_left_turns(const std::string& album) {
    std::list<std::string> names;
    return !libutils::list_directories(names, album) &&
           std::any_of(names.begin(), names.end(), [](const std::string& name) { return committed_count(name); });
}

bool place_left_turns(const std::string& album, std::vector<left_turn_t>& placed) {
    std::list<std::string> directories;
    if (!is_listed(libutils::list_directories(directories, album), album)) {
        return false;
    }
    for (const std::string& name : directories) {
        const std::string path = entry_path(album, name);
        const bool is_begun = name.compare(0, std::strlen(begun_prefix), begun_prefix) == 0;
        const std::optional<unsigned long> count = committed_count(name);
        if ((!is_begun && !count) || is_held(path)) {
            continue;
        }
        if (is_begun) {
            remove_tree(path);
            continue;
        }
        const std::string list = entry_path(path, list_of_photos);
        std::list<std::string> photos;
        if (!is_listed(libutils::list_files(photos, list), list) || !place_tree(album, path)) {
            return false;
        }
        placed.push_back({path, *count, {photos.begin(), photos.end()}});
    }
    return true;
}

void end_left_turns(const std::string& album, const std::vector<left_turn_t>& placed) {
    for (const left_turn_t& turn : placed) {
        end_tree(album, turn.directory);
    }
}

bool end_left_turns(const std::string& album) {
    std::vector<left_turn_t> placed;
    const bool good = place_left_turns(album, placed);
    end_left_turns(album, placed);
    return good;
}

}  // namespace taloram
