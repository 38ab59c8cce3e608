#include "album/flush_album.h"

#include <sys/stat.h>

#include <chrono>
#include <future>
#include <set>
#include <system_error>
#include <vector>

#include "album/album_layout.h"
#include "album/jobs.h"
#include "libutils/diagnostics.h"
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

bool flush_album(const std::string& album) {
    // A slow disk takes minutes.
    constexpr std::chrono::milliseconds interval{50};
    const auto policy = g_workers.idle ? std::launch::async | std::launch::deferred : std::launch::deferred;
    std::future<std::error_code> flushed = std::async(policy, flush_all, file_systems(album));
    while (g_workers.idle && flushed.wait_for(interval) == std::future_status::timeout) {
        g_workers.idle();
    }
    const std::error_code failure = flushed.get();
    if (failure) {
        libutils::report(album, ": can't be brought to the disk, ", failure.message());
    }
    return !failure;
}

}  // namespace taloram
