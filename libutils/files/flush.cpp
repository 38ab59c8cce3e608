#include "libutils/files/flush.h"

#include <fcntl.h>
#include <unistd.h>

namespace libutils {

namespace {

std::error_code with_open(const std::string& path, int (*work)(int descriptor)) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) {
        return last_error();
    }
    const std::error_code failure = work(descriptor) == 0 ? std::error_code() : last_error();
    close(descriptor);
    return failure == std::errc::invalid_argument ? std::error_code() : failure;
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
