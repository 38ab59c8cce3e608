#include "album/card/card_proof.h"

#include <unistd.h>

#include <cerrno>
#include <vector>

#include "libutils/files/open_file.h"
#include "libutils/system_error.h"

namespace taloram {

namespace {

constexpr size_t block_size = size_t{256} << 10;  // bytes

using libutils::open_file_t;

std::error_code check_file(struct stat& status, const open_file_t& file) {
    const std::error_code failure = file.check_regular();
    return failure ? failure : file.query(status);
}

// What has to stay in memory because it can't be written would be compared with itself.
std::error_code flush(const open_file_t& file) {
    const bool is_flushed = fsync(file.descriptor()) == 0 || errno == EINVAL || errno == EROFS;
    return is_flushed ? std::error_code() : libutils::last_error();
}

comparison_t compare_bytes(const open_file_t& original, const open_file_t& copy) {
    std::vector<unsigned char> a(block_size);
    std::vector<unsigned char> b(block_size);
    for (off_t at = 0;; at += static_cast<off_t>(block_size)) {
        const ssize_t from_original = original.read_at(a.data(), a.size(), at);
        if (from_original < 0) {
            return {false, libutils::last_error(), {}};
        }
        const ssize_t from_copy = copy.read_at(b.data(), b.size(), at);
        if (from_copy < 0) {
            return {false, {}, libutils::last_error()};
        }
        if (from_original != from_copy || a != b) {
            return {};
        }
        if (from_original == 0) {
            return {true, {}, {}};
        }
    }
}

}  // namespace

comparison_t compare_on_disk(const std::string& original, const std::string& copy) {
    const open_file_t original_file(original);
    struct stat original_status {};
    if (const std::error_code failure = check_file(original_status, original_file)) {
        return {false, failure, {}};
    }
    const open_file_t copy_file(copy);
    struct stat copy_status {};
    std::error_code failure = check_file(copy_status, copy_file);
    if (!failure) {
        failure = flush(copy_file);
    }
    if (failure) {
        return {false, {}, failure};
    }
    const bool is_same_file =
        original_status.st_dev == copy_status.st_dev && original_status.st_ino == copy_status.st_ino;
    if (is_same_file || original_status.st_size != copy_status.st_size) {
        return {};
    }
    original_file.forget_cached();
    copy_file.forget_cached();
    return compare_bytes(original_file, copy_file);
}

}  // namespace taloram
