#include "album/import/set_aside.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include "album/album_layout.h"
#include "libutils/files/directory.h"
#include "libutils/files/system_path.h"
#include "libutils/system_error.h"

namespace taloram {

namespace {

// A temporary's name that nothing has.
std::string free_name(const std::string& directory) {
    static unsigned long count = 0;
    std::string path;
    struct stat status {};
    do {
        path = entry_path(directory,
                          libutils::temporary_prefix + std::to_string(getpid()) + "-" + std::to_string(++count));
    } while (lstat(path.c_str(), &status) == 0);
    return path;
}

}  // namespace

set_aside_t::~set_aside_t() {
    for (const auto& [path, meanwhile] : files_) {
        [[maybe_unused]] const int renamed = std::rename(meanwhile.c_str(), path.c_str());
    }
}

std::error_code set_aside_t::add(const std::string& path) {
    std::error_code failure;
    for (const std::string& directory : {directory_, libutils::directory_of_file(path)}) {
        const std::string meanwhile = free_name(directory);
        if (std::rename(path.c_str(), meanwhile.c_str()) == 0) {
            files_.emplace_back(path, meanwhile);
            return {};
        }
        failure = libutils::last_error();
        if (libutils::is_absent(failure)) {
            return {};
        }
    }
    return failure;
}

void set_aside_t::remove() {
    for (const auto& [path, meanwhile] : files_) {
        unlink(meanwhile.c_str());
    }
    files_.clear();
}

}  // namespace taloram
