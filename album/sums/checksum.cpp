#include "album/sums/checksum.h"

#include <openssl/evp.h>
#include <unistd.h>

#include <array>
#include <memory>
#include <vector>

#include "libutils/files/open_file.h"
#include "libutils/system_error.h"

namespace taloram {

namespace {

constexpr size_t block_size = size_t{256} << 10;  // bytes

std::string hexadecimal(const unsigned char* bytes, size_t count) {
    constexpr const char* digits = "0123456789abcdef";
    std::string text;
    for (size_t i = 0; i < count; ++i) {
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 15];
    }
    return text;
}

}  // namespace

std::error_code sha256_of_file(std::string& sum, const std::string& path, read_from_t from,
                               const libutils::goes_on_t& asked) {
    const libutils::open_file_t file(path);
    if (const std::error_code failure = file.check_regular()) {
        return failure;
    }
    if (from == read_from_t::disk) {
        file.forget_cached();
    }
    const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    if (context == nullptr || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1) {
        return make_error_code(std::errc::not_enough_memory);
    }
    std::vector<unsigned char> block(block_size);
    ssize_t count = 0;
    while ((count = file.read_some(block.data(), block.size())) > 0) {
        if (!libutils::goes_on(asked)) {
            return make_error_code(std::errc::operation_canceled);
        }
        if (EVP_DigestUpdate(context.get(), block.data(), static_cast<size_t>(count)) != 1) {
            return make_error_code(std::errc::not_enough_memory);
        }
    }
    if (count < 0) {
        return libutils::last_error();
    }
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned size = 0;
    if (EVP_DigestFinal_ex(context.get(), digest.data(), &size) != 1) {
        return make_error_code(std::errc::not_enough_memory);
    }
    sum = hexadecimal(digest.data(), size);
    return {};
}

}  // namespace taloram
