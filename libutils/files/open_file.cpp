#include "libutils/files/open_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "libutils/system_error.h"

namespace libutils {

open_file_t::open_file_t(const std::string& path, int flags)
    : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | flags)),
      failure_(is_open() ? std::error_code() : last_error()) {
}

open_file_t::~open_file_t() {
    if (is_open()) {
        close(descriptor_);
    }
}

std::error_code open_file_t::query(struct stat& status) const {
    if (failure_) {
        return failure_;
    }
    return fstat(descriptor_, &status) == 0 ? std::error_code() : last_error();
}

std::error_code open_file_t::check_regular() const {
    struct stat status {};
    if (const std::error_code failure = query(status)) {
        return failure;
    }
    return S_ISREG(status.st_mode) ? std::error_code() : make_error_code(std::errc::invalid_argument);
}

void open_file_t::forget_cached() const {
    posix_fadvise(descriptor_, 0, 0, POSIX_FADV_DONTNEED);
}

ssize_t open_file_t::read_some(void* bytes, size_t size) const {
    ssize_t count = 0;
    do {
        count = read(descriptor_, bytes, size);
    } while (count < 0 && errno == EINTR);
    return count;
}

ssize_t open_file_t::read_at(void* bytes, size_t size, off_t offset) const {
    size_t done = 0;
    while (done < size) {
        const ssize_t count =
            pread(descriptor_, static_cast<char*>(bytes) + done, size - done, offset + static_cast<off_t>(done));
        if (count == 0) {
            break;
        }
        if (count < 0 && errno != EINTR) {
            return -1;
        }
        done += count < 0 ? 0 : static_cast<size_t>(count);
    }
    return static_cast<ssize_t>(done);
}

}  // namespace libutils
