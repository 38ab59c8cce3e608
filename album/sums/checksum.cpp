#include "album/sums/checksum.h"

#include <openssl/evp.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>
#include <vector>

#include "libutils/files/open_file.h"

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

bool sha256_of_file(std::string& sum, const std::string& path, read_from_t from) {
    const libutils::open_file_t file(path);
    if (!file.is_regular()) {
        return false;
    }
    if (from == read_from_t::disk) {
        file.forget_cached();
    }
    const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    errno = ENOMEM;
    if (context == nullptr || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1) {
        return false;
    }
    std::vector<unsigned char> block(block_size);
    ssize_t count = 0;
    while ((count = file.read_some(block.data(), block.size())) > 0) {
        if (EVP_DigestUpdate(context.get(), block.data(), static_cast<size_t>(count)) != 1) {
            return false;
        }
    }
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned size = 0;
    if (count < 0 || EVP_DigestFinal_ex(context.get(), digest.data(), &size) != 1) {
        return false;
    }
    sum = hexadecimal(digest.data(), size);
    return true;
}

bool flush_to_disk(const std::string& path) {
    const libutils::open_file_t file(path);
    return file.is_open() && fsync(file.descriptor()) == 0;
}

}  // namespace taloram
