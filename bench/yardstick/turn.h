#pragma once

#include <cstdio>
// libjpeg's header needs <cstdio> before it.
#include <jpeglib.h>

#include <cstdlib>
#include <memory>
#include <span>

namespace yardstick {

using bytes_t = std::span<const unsigned char>;

// What libjpeg writes into; it grows where the first guess is too small.
struct stream_t {
    unsigned char* begin = nullptr;
    unsigned long size = 0;

    explicit stream_t(unsigned long guess) : begin(static_cast<unsigned char*>(std::malloc(guess))), size(guess) {}
    ~stream_t() { std::free(begin); }
    stream_t(const stream_t&) = delete;
    stream_t& operator=(const stream_t&) = delete;

    void open(jpeg_compress_struct& encoder);
    [[nodiscard]] bytes_t bytes() const { return {begin, size}; }
};

// Turns a JPEG file clockwise by 1 to 3 quarter turns in the coefficient domain; segments are left behind.
void turn(stream_t& turned, bytes_t file, unsigned count);

}  // namespace yardstick
