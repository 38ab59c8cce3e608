#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <string>
#include <system_error>

namespace libutils {

// A file that is open for reading while this lives. What is asked of one that could not be opened fails.
class open_file_t {
  public:
    // A pipe does not hold the program before it is found to be no regular file.
    // `flags` of open(2) besides.
    explicit open_file_t(const std::string& path, int flags = 0);
    ~open_file_t();
    open_file_t(const open_file_t&) = delete;
    open_file_t& operator=(const open_file_t&) = delete;

    [[nodiscard]] bool is_open() const { return descriptor_ >= 0; }
    [[nodiscard]] const std::error_code& failure() const { return failure_; }
    [[nodiscard]] int descriptor() const { return descriptor_; }
    [[nodiscard]] std::error_code query(struct stat& status) const;

    // Why it is not open, or that it is no regular file.
    [[nodiscard]] std::error_code check_regular() const;

    // What the system keeps of the file in memory is dropped, as far as it is on the disk already.
    void forget_cached() const;

    // The number of bytes read, at most `size`; 0 at the end of the file, -1 with errno set on failure.
    [[nodiscard]] ssize_t read_some(void* bytes, size_t size) const;

    // The same until `size` bytes are there or the file ends, from `offset` on; the place where read_some() goes on
    // stays.
    [[nodiscard]] ssize_t read_at(void* bytes, size_t size, off_t offset) const;

  private:
    int descriptor_;
    std::error_code failure_;  // to open it
};

}  // namespace libutils
