#include "libutils/files/file_copy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>

#include "libutils/bytes/ofsvector.h"
#include "libutils/diagnostics.h"
#include "libutils/files/path.h"
#include "libutils/files/read_file.h"
#include "libutils/files/write_all.h"
#include "libutils/system_error.h"

namespace libutils {

namespace {

constexpr size_t block_size = size_t{1} << 20;  // bytes between two questions whether to go on

std::error_code write_blocks(int out, std::string_view bytes, const goes_on_t& asked) {
    for (; !bytes.empty(); bytes.remove_prefix(std::min(block_size, bytes.size()))) {
        if (!goes_on(asked)) {
            return make_error_code(std::errc::operation_canceled);
        }
        if (const std::error_code unwritten = write_all(out, bytes.substr(0, block_size))) {
            return unwritten;
        }
    }
    return {};
}

}  // namespace

std::error_code copy_file(const std::string& from, const std::string& to, const goes_on_t& asked) {
    bytes_t bytes;
    if (const std::error_code unread = map_file(bytes, from)) {
        return unread;
    }
    const int out = open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (out < 0) {
        return last_error();
    }
    const std::error_code unwritten =
        write_blocks(out, {reinterpret_cast<const char*>(bytes.begin()), bytes.size()}, asked);
    const std::error_code unclosed = close(out) == 0 ? std::error_code() : last_error();
    if (unwritten || unclosed) {
        return unwritten ? unwritten : unclosed;
    }
    return bytes.is_intact() ? copy_date(from, to) : make_error_code(std::errc::io_error);
}

std::error_code copy_date(const std::string& from, const std::string& to) {
    struct stat status {};
    if (stat(from.c_str(), &status) != 0) {
        return last_error();
    }
    const std::array<timespec, 2> times{timespec{status.st_atim.tv_sec, 0}, timespec{status.st_mtim.tv_sec, 0}};
    return utimensat(AT_FDCWD, to.c_str(), times.data(), 0) == 0 ? std::error_code() : last_error();
}

bool filecopy(const char* from, const char* to) {
    if (is_same_file(from, to)) {
        return true;
    }
    bytes_t bytes;
    if (map_file(bytes, from)) {
        return false;
    }
    const int out = open(to, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (out < 0) {
        return false;
    }
    static_cast<void>(write_all(out, {reinterpret_cast<const char*>(bytes.begin()), bytes.size()}));
    close(out);
    bytes.clear();
    return copydate(from, to);
}

bool filecopy1(const char* from, const char* to) {
    if (is_same_file(from, to)) {
        return true;
    }
    std::ifstream in(from, std::ios::binary);
    if (!in) {
        report(from, ": ", std::strerror(errno));
        return false;
    }
    std::ofstream out(to, std::ios::binary | std::ios::trunc);
    if (!out) {
        report(to, ": ", std::strerror(errno));
        return false;
    }
    struct stat status {};
    if (stat(from, &status) != 0) {
        report(from, ": stat(2) error.");
        return false;
    }
    std::array<char, 4096> buffer{};
    auto rest = static_cast<std::streamsize>(status.st_size);
    while (rest > 0 && in && out) {
        const auto block = std::min<std::streamsize>(rest, buffer.size());
        in.read(buffer.data(), block);
        out.write(buffer.data(), in.gcount());
        rest -= block;
    }
    in.close();
    out.close();
    return copydate(from, to);
}

bool copydate(const char* from, const char* to) {
    struct stat status {};
    if (stat(from, &status) != 0) {
        report(from, ": stat(2) error.");
        return false;
    }
    const std::array<timespec, 2> times{timespec{status.st_atim.tv_sec, 0}, timespec{status.st_mtim.tv_sec, 0}};
    if (utimensat(AT_FDCWD, to, times.data(), 0) != 0) {
        report(to, ": ", std::strerror(errno));
        return false;
    }
    return true;
}

bool same_contents(const char* a, const char* b, const goes_on_t& asked) {
    bytes_t bytes_a;
    bytes_t bytes_b;
    if (map_file(bytes_a, a) || map_file(bytes_b, b) || bytes_a.size() != bytes_b.size()) {
        return false;
    }
    for (size_t start = 0; start < bytes_a.size(); start += block_size) {
        const auto* const first = bytes_a.begin() + start;
        const size_t size = std::min(block_size, bytes_a.size() - start);
        if (!goes_on(asked) || !std::equal(first, first + size, bytes_b.begin() + start)) {
            return false;
        }
    }
    return bytes_a.is_intact() && bytes_b.is_intact();
}

}  // namespace libutils
