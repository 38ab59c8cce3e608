#pragma once

#include <cairomm/surface.h>

#include <cstdint>
#include <memory>

#include "libgr/image/image2d.h"
#include "shooting_data/orientation.h"

namespace taloram {

// A picture in memory of its own, shared with nothing: what one thread may make for another.
struct plain_pixels_t {
    int width = 0;  // pixels
    int height = 0;
    std::unique_ptr<uint32_t[]> rows;  // the top one first, without padding; 0x00RRGGBB, as cairo's RGB24

    // Makes room that is not cleared; false when memory is short.
    [[nodiscard]] bool allocate(int new_width, int new_height);
};

constexpr uint64_t longest_surface_side = 32767;  // pixels, of a cairo surface

// The picture set upright as its orientation asks. False when it is empty, longer than a surface, neither 8-bit RGB nor
// grayscale, or memory is short.
[[nodiscard]] bool make_upright(plain_pixels_t& upright, const libgr::image2d_t& image, orientation_t orientation);

// A surface that owns the pixels; null when they are empty.
[[nodiscard]] Cairo::RefPtr<Cairo::ImageSurface> make_surface(plain_pixels_t pixels);

}  // namespace taloram
