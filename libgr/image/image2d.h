#pragma once

#include <array>
#include <cstdint>

#include "libgr/image/image_desc.h"
#include "libutils/bytes/ofsvector.h"
#include "libutils/bytes/refvector.h"

namespace libgr {

// How rows lie in memory.
struct image_store_t {
    uint32_t alignment = 4;  // bytes; 0 means 4
};

// The picture's size and its place in the buffer, in pixels.
struct image_window2d_t {
    uint32_t rowlength = 0;  // 0 means the width
    uint32_t left = 0;
    uint32_t top = 0;
    uint32_t width = 0;
    uint32_t height = 0;
};

// Colour table of an IMAGE_FORMAT_INDEX picture: red, green, blue, 16 bits each.
struct palette_t {
    std::array<libutils::refvector<unsigned short, libutils::alloc_new>, 3> channels;

    void clear();
};

struct color3ub_t {
    unsigned char red = 0;
    unsigned char green = 0;
    unsigned char blue = 0;
};

// A picture in memory. It is itself the view on its pixel bytes; copies share them. Rows are stored bottom-up: row 0 of
// the buffer is the bottom row of the picture.
class image2d_t : public libutils::bytes_t {
  public:
    image_desc_t desc;
    const image_store_t* store = nullptr;  // not owned
    image_window2d_t window;
    palette_t palette;

    // Makes the pixel buffer that description and window ask for: rowsize() x (top + height) bytes, not cleared. False
    // when that number can't be had.
    [[nodiscard]] bool allocate();

    // Releases pixels and palette and sets width and height to 0; all else is kept.
    void clear() override;

    [[nodiscard]] uint64_t rowsize() const;    // bytes from one row to the next
    [[nodiscard]] uint64_t rowbyte() const;    // bytes of the picture's pixels in a row, not rounded up
    [[nodiscard]] uint32_t rowlength() const;  // pixels

    // The pixel at column x and buffer row y (0 is the bottom row), both inside the window.
    [[nodiscard]] unsigned char* pixel(uint32_t x, uint32_t y);
    [[nodiscard]] const unsigned char* pixel(uint32_t x, uint32_t y) const;

    // True when the buffer holds every pixel of the window.
    [[nodiscard]] bool holds_window() const;
};

}  // namespace libgr
