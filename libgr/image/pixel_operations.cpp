#include "libgr/image/pixel_operations.h"

#include <cstring>

#include "libgr/image/halve_rows.h"
#include "libutils/diagnostics.h"

namespace libgr {

namespace {

// Bytes of a pixel that can be halved; 0 for other layouts.
unsigned halved_components(const image_desc_t& desc) {
    if (desc.bits != IMAGE_BITS_8) {
        return 0;
    }
    switch (desc.format) {
        case IMAGE_FORMAT_GRAYSCALE:
            return 1;
        case IMAGE_FORMAT_RGB:
        case IMAGE_FORMAT_BGR:
            return 3;
        case IMAGE_FORMAT_RGBA:
        case IMAGE_FORMAT_BGRA:
            return 4;
        default:
            return 0;
    }
}

// Gives `dst` the description of `src` and new pixels for width x height.
bool make_picture(image2d_t& dst, const image2d_t& src, uint32_t width, uint32_t height) {
    dst.clear();
    dst.desc = src.desc;
    dst.window.width = width;
    dst.window.height = height;
    return src.holds_window() && dst.allocate() && dst.holds_window();
}

}  // namespace

bool scaledown(image2d_t& dst, const image2d_t& src) {
    const image2d_t source = src;
    if (!make_picture(dst, source, source.window.width / 2, source.window.height / 2)) {
        libutils::report("scaledown(): allocate() fail.");
        return false;
    }
    const unsigned components = halved_components(source.desc);
    if (components == 0) {
        libutils::report("scaledown(): ", source.desc.format, ": unsupported format.");
        return false;
    }
    const uint64_t stride = source.rowsize();
    for (uint32_t y = 0; y < dst.window.height; ++y) {
        const unsigned char* row = source.pixel(0, 2 * y);
        if (!halve_rows(dst.pixel(0, y), row, row + stride, dst.window.width, components)) {
            return false;
        }
    }
    return true;
}

bool rotate(unsigned long count, image2d_t& dst, const image2d_t& src) {
    if (count > 3) {
        return false;
    }
    if (count == 0) {
        dst = src;
        return true;
    }
    const image2d_t source = src;
    const auto [width, height] = std::pair(source.window.width, source.window.height);
    const uint32_t pixel_bits = source.desc.getPixelBits();
    const bool quarter = count != 2;
    if (pixel_bits % 8 != 0 || !make_picture(dst, source, quarter ? height : width, quarter ? width : height)) {
        return false;
    }
    const size_t pixel_bytes = pixel_bits / 8;
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t x = 0; x < width; ++x) {
            unsigned char* target = count == 1   ? dst.pixel(y, width - 1 - x)
                                    : count == 2 ? dst.pixel(width - 1 - x, height - 1 - y)
                                                 : dst.pixel(height - 1 - y, x);
            std::memcpy(target, source.pixel(x, y), pixel_bytes);
        }
    }
    return true;
}

unsigned long mixorientandrightrotatecount(unsigned long count, unsigned long orientation) {
    switch (orientation) {
        case 6:
            return (count + 1) & 3;
        case 3:
            return (count + 2) & 3;
        case 8:
            return (count - 1) & 3;
        default:
            return count;
    }
}

}  // namespace libgr
