#include "album/flush_album.h"

#include <sys/stat.h>

#include <chrono>
#include <future>
#include <set>
#include <vector>

#include "album/album_layout.h"
#include "album/jobs.h"
#include "libutils/files/flush.h"

namespace taloram {

namespace {

// One directory for each of the file systems.
std::vector<std::string> file_systems(const std::string& album) {
    std::vector<std::string> directories = level_directories(album, highest_top_level);
    for (const char* name : {".", layout::original, layout::movie, layout::text, layout::html}) {
        directories.push_back(entry_path(album, name));
    }
    std::set<dev_t> seen;
    std::erase_if(directories, [&](const std::string& directory) {
        struct stat status {};
        return stat(directory.c_str(), &status) != 0 || !seen.insert(status.st_dev).second;
    });
    return directories;
}

std::error_code flush_all(const std::vector<std::string>& directories) {
    std::error_code first;
    for (const std::string& directory : directories) {
        const std::error_code failure = libutils::flush_file_system(directory);
        first = first ? first : failure;
    }
    return first;
}

}  // namespace

std::error_code flush_album(const std::string& album) {
    const std::vector<std::string> directories = file_systems(album);
    if (!g_workers.idle) {
        return flush_all(directories);
    }
    // A slow disk takes minutes.
    constexpr std::chrono::milliseconds interval{50};
    std::future<std::error_code> flushed = std::async(std::launch::async, flush_all, directories);
    while (flushed.wait_for(interval) != std::future_status::ready) {
        g_workers.idle();
    }
    return flushed.get();
}

}  // namespace taloram
