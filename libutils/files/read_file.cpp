#include "libutils/files/read_file.h"

#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <climits>
#include <new>
#include <stdexcept>

#include "libutils/files/open_file.h"

namespace libutils {

namespace {

std::error_code read_all(std::string& contents, const open_file_t& file, uint64_t longest) {
    std::array<char, 65536> block{};
    for (;;) {
        const ssize_t count = file.read_some(block.data(), block.size());
        if (count <= 0) {
            return count == 0 ? std::error_code() : last_error();
        }
        if (static_cast<uint64_t>(count) > longest - contents.size()) {
            return make_error_code(std::errc::file_too_large);
        }
        contents.append(block.data(), static_cast<size_t>(count));
    }
}

// A name longer than names may be belongs to no file.
std::error_code reason_of(const std::string& path) {
    const std::error_code failure = last_error();
    const bool is_name_too_long = failure == std::errc::filename_too_long && path.size() < PATH_MAX;
    return is_name_too_long ? make_error_code(std::errc::no_such_file_or_directory) : failure;
}

std::error_code check_kind(const struct stat& status) {
    if (S_ISDIR(status.st_mode)) {
        return make_error_code(std::errc::is_a_directory);
    }
    return S_ISREG(status.st_mode) ? std::error_code() : make_error_code(refusal_t::not_a_file);
}

std::error_code read_regular(std::string& contents, const std::string& path, uint64_t longest) {
    struct stat status {};
    // Opening a device can set it going.
    if (stat(path.c_str(), &status) != 0) {
        return reason_of(path);
    }
    if (const std::error_code refused = check_kind(status)) {
        return refused;
    }
    const open_file_t file(path);
    if (const std::error_code failure = file.query(status)) {
        return failure;
    }
    if (const std::error_code refused = check_kind(status)) {
        return refused;
    }
    const auto size = static_cast<uint64_t>(status.st_size);
    if (size > longest) {
        return make_error_code(std::errc::file_too_large);
    }
    std::string whole;
    whole.reserve(size);
    if (const std::error_code failure = read_all(whole, file, longest)) {
        return failure;
    }
    if (whole.size() < size) {  // it lost bytes meanwhile
        return make_error_code(std::errc::io_error);
    }
    contents = std::move(whole);
    return {};
}

}  // namespace

std::error_code read_file(std::string& contents, const std::string& path, uint64_t longest) {
    try {
        return read_regular(contents, path, longest);
    } catch (const std::bad_alloc&) {
        return make_error_code(std::errc::not_enough_memory);
    } catch (const std::length_error&) {
        return make_error_code(std::errc::not_enough_memory);
    }
}

std::error_code map_file(bytes_t& bytes, const std::string& path) {
    errno = EIO;  // where the allocator fails without a system call that does
    if (bytes.load(0, path.c_str(), PROT_READ_ONLY, 0, false, nullptr)) {
        return {};
    }
    return last_error();
}

}  // namespace libutils
