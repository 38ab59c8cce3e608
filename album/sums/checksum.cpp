#include "album/sums/checksum.h"

#include <openssl/evp.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>
#include <vector>

<<<<<<< Updated upstream
#include "libutils/files/open_file.h"
=======
#include "libutils/system_error.h"
>>>>>>> Stashed changes

namespace taloram {

namespace {

constexpr size_t block_size = size_t{256} << 10;  // bytes

<<<<<<< Updated upstream
=======
class open_file_t {
  public:
    // O_NONBLOCK: a pipe must not hold the program before it is found to be no regular file.
    explicit open_file_t(const std::string& path)
        : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)),
          failure_(descriptor_ >= 0 ? std::error_code() : libutils::last_error()) {}
    ~open_file_t() {
        if (descriptor_ >= 0) {
            close(descriptor_);
        }
    }
    open_file_t(const open_file_t&) = delete;
    open_file_t& operator=(const open_file_t&) = delete;

    [[nodiscard]] const std::error_code& failure() const { return failure_; }
    [[nodiscard]] int descriptor() const { return descriptor_; }

  private:
    int descriptor_;
    std::error_code failure_;
};

std::error_code check_regular(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0) {
        return libutils::last_error();
    }
    return S_ISREG(status.st_mode) ? std::error_code() : make_error_code(std::errc::invalid_argument);
}

// Adds what the file holds from here on.
std::error_code add_contents(EVP_MD_CTX* context, int descriptor) {
    std::vector<unsigned char> block(block_size);
    while (true) {
        const ssize_t count = read(descriptor, block.data(), block.size());
        if (count == 0) {
            return {};
        }
        if (count < 0 && errno != EINTR) {
            return libutils::last_error();
        }
        if (count > 0 && EVP_DigestUpdate(context, block.data(), static_cast<size_t>(count)) != 1) {
            return make_error_code(std::errc::not_enough_memory);
        }
    }
}

>>>>>>> Stashed changes
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

<<<<<<< Updated upstream
bool sha256_of_file(std::string& sum, const std::string& path, read_from_t from) {
    const libutils::open_file_t file(path);
    if (!file.is_regular()) {
        return false;
=======
std::error_code sha256_of_file(std::string& sum, const std::string& path, read_from_t from) {
    const open_file_t file(path);
    if (file.failure()) {
        return file.failure();
    }
    if (const std::error_code failure = check_regular(file.descriptor())) {
        return failure;
>>>>>>> Stashed changes
    }
    if (from == read_from_t::disk) {
        file.forget_cached();
    }
    const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    if (context == nullptr || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1) {
        return make_error_code(std::errc::not_enough_memory);
    }
<<<<<<< Updated upstream
    std::vector<unsigned char> block(block_size);
    ssize_t count = 0;
    while ((count = file.read_some(block.data(), block.size())) > 0) {
        if (EVP_DigestUpdate(context.get(), block.data(), static_cast<size_t>(count)) != 1) {
            return false;
        }
=======
    if (const std::error_code failure = add_contents(context.get(), file.descriptor())) {
        return failure;
>>>>>>> Stashed changes
    }
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned size = 0;
    if (EVP_DigestFinal_ex(context.get(), digest.data(), &size) != 1) {
        return make_error_code(std::errc::not_enough_memory);
    }
    sum = hexadecimal(digest.data(), size);
    return {};
}

<<<<<<< Updated upstream
bool flush_to_disk(const std::string& path) {
    const libutils::open_file_t file(path);
    return file.is_open() && fsync(file.descriptor()) == 0;
=======
std::error_code flush_to_disk(const std::string& path) {
    const open_file_t file(path);
    if (file.failure()) {
        return file.failure();
    }
    return fsync(file.descriptor()) == 0 ? std::error_code() : libutils::last_error();
>>>>>>> Stashed changes
}

}  // namespace taloram
