#include "libgr/image/halve_rows.h"

#include <cstddef>

// Compiled once for every kind of vectors; the running processor decides which is called.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "libgr/image/halve_rows.cpp"
#include <hwy/foreach_target.h>
// It needs foreach_target.h before it.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace libgr::HWY_NAMESPACE {
namespace {

template <size_t components>
HWY_INLINE void halve_pixel(unsigned char* to, const unsigned char* row0, const unsigned char* row1) {
    for (size_t c = 0; c < components; ++c) {
        to[c] = static_cast<unsigned char>((row0[c] + row0[c + components] + row1[c] + row1[c + components]) >> 2);
    }
}

// The pixels of the destination from column x on.
template <size_t components>
HWY_INLINE void halve_pixels(unsigned char* to, const unsigned char* row0, const unsigned char* row1, size_t x,
                             size_t width) {
    for (; x < width; ++x) {
        const size_t from = 2 * components * x;
        halve_pixel<components>(to + components * x, row0 + from, row1 + from);
    }
}

// Where halved RGB goes.
struct interleaved_t {
    unsigned char* to;
};
struct planes_t {
    unsigned char* const* to;
};

// The functions on vectors do the columns that fill whole ones and return the first that is left.
#if HWY_TARGET == HWY_SCALAR
HWY_INLINE size_t halve_gray_vectors(unsigned char*, const unsigned char*, const unsigned char*, size_t) {
    return 0;
}

template <typename Target>
HWY_INLINE size_t halve_rgb_vectors(const unsigned char*, const unsigned char*, size_t, Target) {
    return 0;
}
#else
namespace hn = hwy::HWY_NAMESPACE;

using bytes_tag_t = hn::ScalableTag<uint8_t>;
using half_tag_t = hn::Half<bytes_tag_t>;
using byte_vector_t = hn::Vec<bytes_tag_t>;
using half_vector_t = hn::Vec<half_tag_t>;

// The sums of neighbours, as 16-bit lanes.
HWY_INLINE auto pair_sums(byte_vector_t bytes) {
    constexpr hn::Repartition<uint16_t, bytes_tag_t> words;
    const auto pairs = hn::BitCast(words, bytes);
    return hn::Add(hn::And(pairs, hn::Set(words, 0xFF)), hn::ShiftRight<8>(pairs));
}

// The averages of one vector from each row: half a vector.
HWY_INLINE half_vector_t halve(byte_vector_t row0, byte_vector_t row1) {
    constexpr hn::Repartition<int16_t, bytes_tag_t> words;
    const auto averages = hn::ShiftRight<2>(hn::Add(pair_sums(row0), pair_sums(row1)));
    return hn::DemoteTo(half_tag_t(), hn::BitCast(words, averages));
}

HWY_INLINE size_t halve_gray_vectors(unsigned char* to, const unsigned char* row0, const unsigned char* row1,
                                     size_t width) {
    constexpr bytes_tag_t bytes;
    const size_t step = hn::Lanes(half_tag_t());
    size_t x = 0;
    for (; width - x >= step; x += step) {
        hn::StoreU(halve(hn::LoadU(bytes, row0 + 2 * x), hn::LoadU(bytes, row1 + 2 * x)), half_tag_t(), to + x);
    }
    return x;
}

HWY_INLINE void store(interleaved_t target, size_t x, half_vector_t red, half_vector_t green, half_vector_t blue) {
    hn::StoreInterleaved3(red, green, blue, half_tag_t(), target.to + 3 * x);
}

HWY_INLINE void store(planes_t target, size_t x, half_vector_t red, half_vector_t green, half_vector_t blue) {
    hn::StoreU(red, half_tag_t(), target.to[0] + x);
    hn::StoreU(green, half_tag_t(), target.to[1] + x);
    hn::StoreU(blue, half_tag_t(), target.to[2] + x);
}

template <typename Target>
HWY_INLINE size_t halve_rgb_vectors(const unsigned char* row0, const unsigned char* row1, size_t width, Target target) {
    constexpr bytes_tag_t bytes;
    const size_t step = hn::Lanes(half_tag_t());
    size_t x = 0;
    for (; width - x >= step; x += step) {
        byte_vector_t red0, green0, blue0, red1, green1, blue1;
        hn::LoadInterleaved3(bytes, row0 + 6 * x, red0, green0, blue0);
        hn::LoadInterleaved3(bytes, row1 + 6 * x, red1, green1, blue1);
        store(target, x, halve(red0, red1), halve(green0, green1), halve(blue0, blue1));
    }
    return x;
}
#endif

void halve_gray(unsigned char* to, const unsigned char* row0, const unsigned char* row1, size_t width) {
    halve_pixels<1>(to, row0, row1, halve_gray_vectors(to, row0, row1, width), width);
}

void halve_rgb(unsigned char* to, const unsigned char* row0, const unsigned char* row1, size_t width) {
    halve_pixels<3>(to, row0, row1, halve_rgb_vectors(row0, row1, width, interleaved_t{to}), width);
}

void halve_rgb_to_planes(unsigned char* const* to, const unsigned char* row0, const unsigned char* row1, size_t width) {
    for (size_t x = halve_rgb_vectors(row0, row1, width, planes_t{to}); x < width; ++x) {
        unsigned char pixel[3];
        halve_pixel<3>(pixel, row0 + 6 * x, row1 + 6 * x);
        to[0][x] = pixel[0];
        to[1][x] = pixel[1];
        to[2][x] = pixel[2];
    }
}

void halve_rgba(unsigned char* to, const unsigned char* row0, const unsigned char* row1, size_t width) {
    halve_pixels<4>(to, row0, row1, 0, width);
}

}  // namespace
}  // namespace libgr::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace libgr {

HWY_EXPORT(halve_gray);
HWY_EXPORT(halve_rgb);
HWY_EXPORT(halve_rgb_to_planes);
HWY_EXPORT(halve_rgba);

bool halve_rows(unsigned char* to, const unsigned char* row0, const unsigned char* row1, uint32_t width,
                unsigned components) {
    switch (components) {
        case 1:
            HWY_DYNAMIC_DISPATCH(halve_gray)(to, row0, row1, width);
            return true;
        case 3:
            HWY_DYNAMIC_DISPATCH(halve_rgb)(to, row0, row1, width);
            return true;
        case 4:
            HWY_DYNAMIC_DISPATCH(halve_rgba)(to, row0, row1, width);
            return true;
        default:
            return false;
    }
}

void halve_rgb_rows(unsigned char* const to[3], const unsigned char* row0, const unsigned char* row1, uint32_t width) {
    HWY_DYNAMIC_DISPATCH(halve_rgb_to_planes)(to, row0, row1, width);
}

}  // namespace libgr
#endif
