// Makes the names below a directory those of a FAT disk: small and capital letters are one, no file is without a name
// and none has two.
//
//   FOLDED_DIRECTORY=<directory> LD_PRELOAD=.../bin/folding_names.so ASAN_OPTIONS=verify_asan_link_order=0:... program
//
// Only the last component of a path is folded, as a name is by the directory that holds it.

#include <dirent.h>
#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/support/preloaded.h"

using preloaded::next;

namespace {

bool is_folded(const std::string& path) {
    const char* const directory = std::getenv("FOLDED_DIRECTORY");
    return directory != nullptr && path.starts_with(std::string(directory) + "/");
}

// The name under which the disk has a file, with its directory.
std::string found(const std::string& path) {
    const size_t slash = path.rfind('/');
    DIR* const stream = is_folded(path) ? opendir(path.substr(0, slash + 1).c_str()) : nullptr;
    if (stream == nullptr) {
        return path;
    }
    std::string result = path;
    const std::string name = path.substr(slash + 1);
    while (const dirent* entry = readdir(stream)) {
        if (strcasecmp(entry->d_name, name.c_str()) == 0) {
            result = path.substr(0, slash + 1) + entry->d_name;
        }
    }
    closedir(stream);
    return result;
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    static auto* const real = next<int(const char*, int, ...)>("open");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = preloaded::open_mode(flags, arguments);
    va_end(arguments);
    if ((flags & O_TMPFILE) == O_TMPFILE && is_folded(std::string(path) + "/")) {
        errno = EOPNOTSUPP;
        return -1;
    }
    return real(found(path).c_str(), flags, mode);
}

int stat(const char* path, struct stat* status) noexcept {
    static auto* const real = next<int(const char*, struct stat*)>("stat");
    return real(found(path).c_str(), status);
}

int lstat(const char* path, struct stat* status) noexcept {
    static auto* const real = next<int(const char*, struct stat*)>("lstat");
    return real(found(path).c_str(), status);
}

int access(const char* path, int mode) noexcept {
    static auto* const real = next<int(const char*, int)>("access");
    return real(found(path).c_str(), mode);
}

int unlink(const char* path) noexcept {
    static auto* const real = next<int(const char*)>("unlink");
    return real(found(path).c_str());
}

int rename(const char* from, const char* to) noexcept {
    static auto* const real = next<int(const char*, const char*)>("rename");
    return real(found(from).c_str(), found(to).c_str());
}

int linkat(int from_directory, const char* from, int to_directory, const char* to, int flags) noexcept {
    static auto* const real = next<int(int, const char*, int, const char*, int)>("linkat");
    if (is_folded(to)) {
        errno = EPERM;
        return -1;
    }
    return real(from_directory, from, to_directory, to, flags);
}

}  // extern "C"
