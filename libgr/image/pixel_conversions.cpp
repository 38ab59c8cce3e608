#include "libgr/image/pixel_conversions.h"

#include <array>

namespace libgr {

namespace {

constexpr unsigned char opaque = 255;

// Makes `dst` the picture `src` in format `to`, pixel by pixel through `convert(to_pixel, from_pixel)`.
template <typename Convert>
bool convert_pixels(image2d_t& dst, const image2d_t& src, e_image_format_t from, e_image_format_t to, Convert convert) {
    const image2d_t source = src;
    if (source.desc.format != from || source.desc.bits != IMAGE_BITS_8 || !source.holds_window()) {
        return false;
    }
    dst.clear();
    dst.desc = source.desc;
    dst.desc.format = to;
    dst.window.width = source.window.width;
    dst.window.height = source.window.height;
    if (!dst.allocate() || !dst.holds_window()) {
        return false;
    }
    for (uint32_t y = 0; y < dst.window.height; ++y) {
        for (uint32_t x = 0; x < dst.window.width; ++x) {
            convert(dst.pixel(x, y), source.pixel(x, y));
        }
    }
    return true;
}

void swap_ends(unsigned char* to, const unsigned char* from) {
    to[0] = from[2];
    to[1] = from[1];
    to[2] = from[0];
}

void take_colours(unsigned char* to, const unsigned char* from) {
    to[0] = from[0];
    to[1] = from[1];
    to[2] = from[2];
}

}  // namespace

bool bgr2rgb(image2d_t& dst, const image2d_t& src) {
    return convert_pixels(dst, src, IMAGE_FORMAT_BGR, IMAGE_FORMAT_RGB, swap_ends);
}

bool rgb2bgr(image2d_t& dst, const image2d_t& src) {
    return convert_pixels(dst, src, IMAGE_FORMAT_RGB, IMAGE_FORMAT_BGR, swap_ends);
}

bool rgb2rgba(image2d_t& dst, const image2d_t& src) {
    return convert_pixels(dst, src, IMAGE_FORMAT_RGB, IMAGE_FORMAT_RGBA,
                          [](unsigned char* to, const unsigned char* from) {
                              take_colours(to, from);
                              to[3] = opaque;
                          });
}

bool rgba2rgb(image2d_t& dst, const image2d_t& src) {
    return convert_pixels(dst, src, IMAGE_FORMAT_RGBA, IMAGE_FORMAT_RGB, take_colours);
}

bool index2rgb(image2d_t& dst, const image2d_t& src) {
    const palette_t palette = src.palette;
    return convert_pixels(dst, src, IMAGE_FORMAT_INDEX, IMAGE_FORMAT_RGB,
                          [&palette](unsigned char* to, const unsigned char* from) {
                              for (size_t c = 0; c < palette.channels.size(); ++c) {
                                  const auto& channel = palette.channels[c];
                                  to[c] = *from < channel.size() ? static_cast<unsigned char>(channel[*from] >> 8) : 0;
                              }
                          });
}

bool copy(image2d_t& dst, const image2d_t& src) {
    dst = src;
    // Shared until here: resizing a shared view makes it a buffer of its own.
    return !dst.is_allocated() || dst.resize(dst.size());
}

}  // namespace libgr
