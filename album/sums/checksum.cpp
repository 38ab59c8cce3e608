#include "album/sums/checksum.h"

#include <fcntl.h>
#include <openssl/evp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>
#include <vector>

namespace taloram {

namespace {

constexpr size_t block_size = size_t{256} << 10;  // bytes

class open_file_t {
  public:
    // O_NONBLOCK: a pipe must not hold the program before it is found to be no regular file.
    explicit open_file_t(const std::string& path)
        : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {}
    ~open_file_t() {
        if (is_open()) {
            const int failure = errno;
            close(descriptor_);
            errno = failure;
        }
    }
    open_file_t(const open_file_t&) = delete;
    open_file_t& operator=(const open_file_t&) = delete;

    [[nodiscard]] bool is_open() const { return descriptor_ >= 0; }
    [[nodiscard]] int descriptor() const { return descriptor_; }

  private:
    int descriptor_;
};

bool is_regular(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0) {
        return false;
    }
    errno = EINVAL;
    return S_ISREG(status.st_mode);
}

// The number of bytes read, 0 at the end of the file, -1 on failure.
ssize_t read_block(int descriptor, std::vector<unsigned char>& block) {
    ssize_t count = 0;
    do {
        count = read(descriptor, block.data(), block.size());
    } while (count < 0 && errno == EINTR);
    return count;
}

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
    const open_file_t file(path);
    if (!file.is_open() || !is_regular(file.descriptor())) {
        return false;
    }
    if (from == read_from_t::disk) {
        posix_fadvise(file.descriptor(), 0, 0, POSIX_FADV_DONTNEED);
    }
    const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    errno = ENOMEM;
    if (context == nullptr || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1) {
        return false;
    }
    std::vector<unsigned char> block(block_size);
    ssize_t count = 0;
    while ((count = read_block(file.descriptor(), block)) > 0) {
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
    const open_file_t file(path);
    return file.is_open() && fsync(file.descriptor()) == 0;
}

}  // namespace taloram
