#include "album/sizes/unflushed_sizes.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <list>
#include <tuple>

#include "album/album_layout.h"
#include "album/flush_album.h"
#include "libgr/jpeg/jpegdata.h"
#include "libutils/files/directory.h"
#include "libutils/files/file_copy.h"
#include "libutils/files/flush.h"
#include "libutils/files/new_file.h"

namespace taloram {

namespace {

std::string note_path(const std::string& album) {
    return entry_path(album, ".taloram-unflushed");
}

// A stream of ours from its first byte to its last. What never came to the disk reads as zeros, a block at least.
bool is_whole(const std::string& path) {
    constexpr size_t block = 4096;  // bytes
    libgr::jpegdata_t data;
    if (!data.load(path.c_str()) || data.size() < 4) {
        return false;
    }
    const unsigned char* const bytes = data.begin();
    const size_t size = data.size();
    bool whole = bytes[0] == 0xff && bytes[1] == 0xd8 && bytes[size - 2] == 0xff && bytes[size - 1] == 0xd9;
    for (size_t start = 0; whole && start < size; start += block) {
        const unsigned char* const end = bytes + std::min(start + block, size);
        whole = std::any_of(bytes + start, end, [](unsigned char byte) { return byte != 0; });
    }
    return whole && data.is_intact();
}

bool is_older(const struct stat& a, const struct stat& b) {
    return std::tie(a.st_mtim.tv_sec, a.st_mtim.tv_nsec) < std::tie(b.st_mtim.tv_sec, b.st_mtim.tv_nsec);
}

void remove_broken_in(const std::string& directory, const std::string& album, const struct stat& note) {
    std::list<std::string> names;
    if (libutils::list_files(names, directory)) {
        return;
    }
    for (const std::string& name : names) {
        const std::string path = entry_path(directory, name);
        const std::string original = original_path(album, name);
        struct stat status {};
        const bool is_unflushed = stat(path.c_str(), &status) == 0 && !is_older(status, note);
        // Level 0 is as broken as its original.
        if (is_unflushed && is_exist(original) && !is_whole(path) &&
            !libutils::same_contents(path.c_str(), original.c_str())) {
            unlink(path.c_str());
        }
    }
}

}  // namespace

void note_unflushed_sizes(const std::string& album) {
    // Each process of several at work waits for the disk once.
    static std::string noted;
    const std::string note = note_path(album);
    if (noted == album && is_exist(note)) {
        return;
    }
    noted = album;
    if (is_exist(note)) {
        static_cast<void>(libutils::flush(entry_path(album, ".")));
        return;
    }
    libutils::new_file_t file(note, libutils::staging_t::beside);
    file.open();
    static_cast<void>(file.commit_to_disk());
}

bool has_unflushed_sizes(const std::string& album) {
    return is_exist(note_path(album));
}

bool flush_sizes(const std::string& album) {
    const bool flushed = flush_album(album);
    if (flushed) {
        unlink(note_path(album).c_str());
    }
    return flushed;
}

void remove_broken_sizes(const std::string& album) {
    struct stat note {};
    if (stat(note_path(album).c_str(), &note) != 0) {
        return;
    }
    for (const std::string& directory : level_directories(album, highest_top_level)) {
        remove_broken_in(directory, album, note);
    }
}

}  // namespace taloram
