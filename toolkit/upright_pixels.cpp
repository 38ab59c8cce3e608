#include "toolkit/upright_pixels.h"

#include <cstddef>
#include <new>
#include <utility>

namespace taloram {

namespace {

// How the picture's bytes are walked so that upright pixels come row by row; all in bytes.
struct walk_t {
    std::ptrdiff_t start;   // of the upright picture's left upper pixel
    std::ptrdiff_t across;  // to the pixel on its right
    std::ptrdiff_t down;    // to the pixel below
};

walk_t plan_walk(const libgr::image2d_t& image, orientation_t orientation, std::ptrdiff_t samples) {
    const bool backwards = starts_at_right(orientation);
    const bool upwards = starts_at_bottom(orientation);
    const libgr::image_window2d_t& window = image.window;
    // The buffer's rows lie bottom-up.
    const unsigned char* const first = image.pixel(backwards ? window.width - 1 : 0, upwards ? 0 : window.height - 1);
    const std::ptrdiff_t column = backwards ? -samples : samples;
    const auto stride = static_cast<std::ptrdiff_t>(image.rowsize());
    const std::ptrdiff_t row = upwards ? stride : -stride;
    const bool swapped = swaps_sides(orientation);
    return {first - image.begin(), swapped ? row : column, swapped ? column : row};
}

template <bool gray>
void copy_pixels(const plain_pixels_t& to, const unsigned char* bytes, const walk_t& walk) {
    uint32_t* out = to.rows.get();
    for (int y = 0; y < to.height; ++y) {
        std::ptrdiff_t at = walk.start + y * walk.down;
        for (int x = 0; x < to.width; ++x, at += walk.across) {
            const unsigned char* const pixel = bytes + at;
            *out++ = gray ? 0x010101U * pixel[0] : uint32_t{pixel[0]} << 16 | uint32_t{pixel[1]} << 8 | pixel[2];
        }
    }
}

void release_rows(void* rows) {
    delete[] static_cast<uint32_t*>(rows);
}

constexpr cairo_user_data_key_t rows_key{};

}  // namespace

bool plain_pixels_t::allocate(int new_width, int new_height) {
    rows.reset(new (std::nothrow) uint32_t[static_cast<size_t>(new_width) * static_cast<size_t>(new_height)]);
    width = rows ? new_width : 0;
    height = rows ? new_height : 0;
    return rows != nullptr;
}

bool make_upright(plain_pixels_t& upright, const libgr::image2d_t& image, orientation_t orientation) {
    const libgr::image_window2d_t& window = image.window;
    const bool gray = image.desc.format == libgr::IMAGE_FORMAT_GRAYSCALE;
    const bool known = (gray || image.desc.format == libgr::IMAGE_FORMAT_RGB) &&
                       image.desc.type == libgr::IMAGE_TYPE_UINT && image.desc.bits == libgr::IMAGE_BITS_8;
    if (!known || window.width == 0 || window.height == 0 || window.width > longest_surface_side ||
        window.height > longest_surface_side || !image.holds_window()) {
        return false;
    }
    const auto width = static_cast<int>(window.width);
    const auto height = static_cast<int>(window.height);
    const bool swapped = swaps_sides(orientation);
    if (!upright.allocate(swapped ? height : width, swapped ? width : height)) {
        return false;
    }
    if (gray) {
        copy_pixels<true>(upright, image.begin(), plan_walk(image, orientation, 1));
    } else {
        copy_pixels<false>(upright, image.begin(), plan_walk(image, orientation, 3));
    }
    return true;
}

Cairo::RefPtr<Cairo::ImageSurface> make_surface(plain_pixels_t pixels) {
    if (!pixels.rows) {
        return {};
    }
    cairo_surface_t* const surface = cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(pixels.rows.get()), CAIRO_FORMAT_RGB24, pixels.width, pixels.height,
        pixels.width * static_cast<int>(sizeof(uint32_t)));
    if (cairo_surface_set_user_data(surface, &rows_key, pixels.rows.get(), &release_rows) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(surface);
        return {};
    }
    static_cast<void>(pixels.rows.release());
    return Cairo::RefPtr<Cairo::ImageSurface>(new Cairo::ImageSurface(surface, true));
}

}  // namespace taloram
