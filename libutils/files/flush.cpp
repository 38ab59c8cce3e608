#include "libutils/files/flush.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "libutils/files/open_file.h"

namespace libutils {

namespace {

std::error_code with_open(const std::string& path, int (*work)(int descriptor)) {
    const open_file_t file(path);
    const bool done = file.is_open() && work(file.descriptor()) == 0;
    // Not every file system has something to flush in a directory.
    const bool has_nothing = file.is_open() && errno == EINVAL;
    return done || has_nothing ? std::error_code() : last_error();
}

}  // namespace

std::error_code flush(const std::string& path) {
    return with_open(path, fsync);
}

std::error_code flush(int descriptor) {
    return fsync(descriptor) == 0 ? std::error_code() : last_error();
}

void begin_flush(int descriptor) {
    // Not every file system has it; whoever flushes waits longer then.
    static_cast<void>(sync_file_range(descriptor, 0, 0, SYNC_FILE_RANGE_WRITE));
}

std::error_code flush_file_system(const std::string& path) {
    return with_open(path, syncfs);
}

}  // namespace libutils
