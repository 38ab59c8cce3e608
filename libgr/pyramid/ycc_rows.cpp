#include "libgr/pyramid/ycc_rows.h"

#include <algorithm>

// Compiled once for every kind of vectors; the running processor decides which is called.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "libgr/pyramid/ycc_rows.cpp"
#include <hwy/foreach_target.h>
// It needs foreach_target.h before it.
#include <hwy/highway.h>

#include "libgr/pyramid/word_vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace libgr::HWY_NAMESPACE {
namespace {

// JFIF's factors in 16 bits after the point.
constexpr int fixed(double factor) {
    return static_cast<int>(factor * 65536 + (factor < 0 ? -0.5 : 0.5));
}
constexpr int fixed_half = 1 << 15;
constexpr int chroma_zero = 128;

// Adds the pixel to a sum of pixels.
HWY_INLINE void add_pixel(int (&sum)[3], int y, int cb, int cr) {
    cb -= chroma_zero;
    cr -= chroma_zero;
    sum[0] += std::clamp(y + ((fixed(1.402) * cr + fixed_half) >> 16), 0, 255);
    sum[1] += std::clamp(y + ((fixed(-0.34414) * cb + fixed(-0.71414) * cr + fixed_half) >> 16), 0, 255);
    sum[2] += std::clamp(y + ((fixed(1.772) * cb + fixed_half) >> 16), 0, 255);
}

// A value between two columns: three parts of the nearer one. Rounding alternates so that it favours no direction.
template <bool summed>
HWY_INLINE int upsampled(const int16_t* chroma, size_t x, bool odd_column) {
    const int sum = 3 * chroma[x] + (odd_column ? chroma[x + 1] : (chroma - 1)[x]);
    return summed ? (sum + (odd_column ? 7 : 8)) >> 4 : (sum + (odd_column ? 2 : 1)) >> 2;
}

template <bool summed>
HWY_INLINE void add_pair(int (&sum)[3], const ycc_row_t& row, size_t x) {
    add_pixel(sum, row.y[2 * x], upsampled<summed>(row.cb, x, false), upsampled<summed>(row.cr, x, false));
    add_pixel(sum, row.y[2 * x + 1], upsampled<summed>(row.cb, x, true), upsampled<summed>(row.cr, x, true));
}

HWY_INLINE unsigned char luma(int red, int green, int blue) {
    return static_cast<unsigned char>((fixed(0.299) * red + fixed(0.587) * green + fixed(0.114) * blue + fixed_half) >>
                                      16);
}

constexpr int chroma_offset = (chroma_zero << 16) + fixed_half - 1;

HWY_INLINE int blue_chroma(int red, int green, int blue) {
    return (fixed(-0.16874) * red + fixed(-0.33126) * green + fixed(0.5) * blue + chroma_offset) >> 16;
}

HWY_INLINE int red_chroma(int red, int green, int blue) {
    return (fixed(0.5) * red + fixed(-0.41869) * green + fixed(-0.08131) * blue + chroma_offset) >> 16;
}

// The functions on vectors do the columns that fill whole ones and return the first that is left.
#if HWY_TARGET == HWY_SCALAR
HWY_INLINE size_t sum_vectors(int16_t*, const unsigned char*, const unsigned char*, size_t) {
    return 0;
}

template <bool summed>
HWY_INLINE size_t halve_vectors(unsigned char* const*, const ycc_row_t&, const ycc_row_t&, size_t) {
    return 0;
}

HWY_INLINE size_t halve_full_vectors(unsigned char* const*, const unsigned char* const*, const unsigned char* const*,
                                     size_t) {
    return 0;
}

HWY_INLINE size_t convert_vectors(const ycc_strip_rows_t&, const unsigned char* const*, const unsigned char* const*,
                                  size_t) {
    return 0;
}
#else
HWY_INLINE words_t even_bytes(bytes_t bytes) {
    return hn::And(hn::BitCast(words_tag, bytes), word(0xFF));
}

HWY_INLINE words_t odd_bytes(bytes_t bytes) {
    return hn::BitCast(words_tag, hn::ShiftRight<8>(hn::BitCast(unsigned_words_tag, bytes)));
}

// Sums of two products in 32 bits, for the even and for the odd lanes of two vectors.
struct long_lanes_t {
    longs_t even;
    longs_t odd;
};

// a * a_factor + b * b_factor; the factors have 16 bits.
HWY_INLINE long_lanes_t weighted_sum(words_t a, int a_factor, words_t b, int b_factor) {
    const words_t even = hn::OddEven(hn::BitCast(words_tag, hn::ShiftLeft<16>(hn::BitCast(longs_tag, b))), a);
    const words_t odd = hn::OddEven(b, hn::BitCast(words_tag, hn::ShiftRight<16>(hn::BitCast(longs_tag, a))));
    return {sum_of_products(even, a_factor, b_factor), sum_of_products(odd, a_factor, b_factor)};
}

HWY_INLINE long_lanes_t operator+(const long_lanes_t& a, const long_lanes_t& b) {
    return {hn::Add(a.even, b.even), hn::Add(a.odd, b.odd)};
}

HWY_INLINE long_lanes_t operator+(const long_lanes_t& a, int b) {
    return {hn::Add(a.even, hn::Set(longs_tag, b)), hn::Add(a.odd, hn::Set(longs_tag, b))};
}

// Values of 0 to 255, times one half in 16 bits after the point.
HWY_INLINE long_lanes_t halves(words_t values) {
    const auto longs = hn::BitCast(longs_tag, values);
    const auto high = hn::Set(longs_tag, static_cast<int32_t>(0xFFFF0000));
    return {hn::ShiftRight<1>(hn::ShiftLeft<16>(longs)), hn::ShiftRight<1>(hn::And(longs, high))};
}

// What stands before the point, in the order of the words.
HWY_INLINE words_t before_point(const long_lanes_t& lanes) {
    return hn::OddEven(hn::BitCast(words_tag, lanes.odd), hn::BitCast(words_tag, hn::ShiftRight<16>(lanes.even)));
}

struct pixels_t {
    words_t red;
    words_t green;
    words_t blue;
};

HWY_INLINE words_t as_sample(words_t value) {
    return hn::Min(hn::Max(value, hn::Zero(words_tag)), word(255));
}

// Multiplies by factors of over 16 bits as by a whole number and a rest.
HWY_INLINE pixels_t to_rgb(words_t y, words_t cb, words_t cr) {
    cb = hn::Sub(cb, word(chroma_zero));
    cr = hn::Sub(cr, word(chroma_zero));
    const words_t twice_rest = hn::MulHigh(hn::Add(cr, cr), word(fixed(1.402) - 65536));
    const words_t red = hn::Add(cr, hn::ShiftRight<1>(hn::Add(twice_rest, word(1))));
    static_assert(fixed(1.772) % 2 == 0, "the rest is halved");
    const words_t blue = hn::Add(hn::Add(cb, cb), hn::MulFixedPoint15(cb, word(fixed(1.772) / 2 - 65536)));
    const words_t green =
        hn::Sub(before_point(weighted_sum(cb, fixed(-0.34414), cr, fixed(-0.71414) + 65536) + fixed_half), cr);
    return {as_sample(hn::Add(y, red)), as_sample(hn::Add(y, green)), as_sample(hn::Add(y, blue))};
}

HWY_INLINE pixels_t operator+(const pixels_t& a, const pixels_t& b) {
    return {hn::Add(a.red, b.red), hn::Add(a.green, b.green), hn::Add(a.blue, b.blue)};
}

template <bool summed>
HWY_INLINE words_t upsampled_vector(const int16_t* chroma, bool odd_column) {
    const words_t nearer = hn::LoadU(words_tag, chroma);
    const words_t farther = hn::LoadU(words_tag, odd_column ? chroma + 1 : chroma - 1);
    const words_t sum = hn::Add(hn::Mul(nearer, word(3)), farther);
    return summed ? hn::ShiftRight<4>(hn::Add(sum, word(odd_column ? 7 : 8)))
                  : hn::ShiftRight<2>(hn::Add(sum, word(odd_column ? 2 : 1)));
}

// The sums of two neighbours each.
template <bool summed>
HWY_INLINE pixels_t pair_sums(const ycc_row_t& row, size_t x) {
    const bytes_t y = hn::LoadU(bytes_tag_t(), row.y + 2 * x);
    return to_rgb(even_bytes(y), upsampled_vector<summed>(row.cb + x, false),
                  upsampled_vector<summed>(row.cr + x, false)) +
           to_rgb(odd_bytes(y), upsampled_vector<summed>(row.cb + x, true), upsampled_vector<summed>(row.cr + x, true));
}

HWY_INLINE void store_quarters(unsigned char* const* to, size_t x, const pixels_t& sums) {
    store_bytes(hn::ShiftRight<2>(sums.red), to[0] + x);
    store_bytes(hn::ShiftRight<2>(sums.green), to[1] + x);
    store_bytes(hn::ShiftRight<2>(sums.blue), to[2] + x);
}

HWY_INLINE size_t sum_vectors(int16_t* to, const unsigned char* nearer, const unsigned char* farther, size_t width) {
    size_t x = 0;
    for (; width - x >= hn::Lanes(words_tag); x += hn::Lanes(words_tag)) {
        hn::StoreU(hn::Add(hn::Mul(load_bytes(nearer + x), word(3)), load_bytes(farther + x)), words_tag, to + x);
    }
    return x;
}

template <bool summed>
HWY_INLINE size_t halve_vectors(unsigned char* const* to, const ycc_row_t& row0, const ycc_row_t& row1, size_t width) {
    size_t x = 0;
    for (; width - x >= hn::Lanes(words_tag); x += hn::Lanes(words_tag)) {
        store_quarters(to, x, pair_sums<summed>(row0, x) + pair_sums<summed>(row1, x));
    }
    return x;
}

HWY_INLINE pixels_t full_pair_sums(const unsigned char* const* row, size_t x) {
    const bytes_t y = hn::LoadU(bytes_tag_t(), row[0] + 2 * x);
    const bytes_t cb = hn::LoadU(bytes_tag_t(), row[1] + 2 * x);
    const bytes_t cr = hn::LoadU(bytes_tag_t(), row[2] + 2 * x);
    return to_rgb(even_bytes(y), even_bytes(cb), even_bytes(cr)) + to_rgb(odd_bytes(y), odd_bytes(cb), odd_bytes(cr));
}

HWY_INLINE size_t halve_full_vectors(unsigned char* const* to, const unsigned char* const* row0,
                                     const unsigned char* const* row1, size_t width) {
    size_t x = 0;
    for (; width - x >= hn::Lanes(words_tag); x += hn::Lanes(words_tag)) {
        store_quarters(to, x, full_pair_sums(row0, x) + full_pair_sums(row1, x));
    }
    return x;
}

struct ycc_words_t {
    words_t y;
    words_t cb;
    words_t cr;
};

// Factors of over 16 bits are split so that two products make them up.
HWY_INLINE ycc_words_t to_ycc(const pixels_t& rgb) {
    constexpr int green_part = 1 << 14;
    return {before_point(weighted_sum(rgb.red, fixed(0.299), rgb.green, fixed(0.587) - green_part) +
                         weighted_sum(rgb.blue, fixed(0.114), rgb.green, green_part) + fixed_half),
            before_point(weighted_sum(rgb.red, fixed(-0.16874), rgb.green, fixed(-0.33126)) + halves(rgb.blue) +
                         chroma_offset),
            before_point(weighted_sum(rgb.blue, fixed(-0.08131), rgb.green, fixed(-0.41869)) + halves(rgb.red) +
                         chroma_offset)};
}

// Converts a row and adds its chroma to the sums over 2 x 2 pixels.
HWY_INLINE void convert_row(unsigned char* y, words_t& cb_sums, words_t& cr_sums, const unsigned char* const* row,
                            size_t x) {
    constexpr bytes_tag_t bytes_tag;
    const bytes_t red = hn::LoadU(bytes_tag, row[0] + x);
    const bytes_t green = hn::LoadU(bytes_tag, row[1] + x);
    const bytes_t blue = hn::LoadU(bytes_tag, row[2] + x);
    const ycc_words_t even = to_ycc({even_bytes(red), even_bytes(green), even_bytes(blue)});
    const ycc_words_t odd = to_ycc({odd_bytes(red), odd_bytes(green), odd_bytes(blue)});
    hn::StoreU(hn::BitCast(bytes_tag, hn::Or(even.y, hn::ShiftLeft<8>(odd.y))), bytes_tag, y + x);
    cb_sums = hn::Add(cb_sums, hn::Add(even.cb, odd.cb));
    cr_sums = hn::Add(cr_sums, hn::Add(even.cr, odd.cr));
}

HWY_INLINE size_t convert_vectors(const ycc_strip_rows_t& to, const unsigned char* const* row0,
                                  const unsigned char* const* row1, size_t width) {
    const words_t rounding = hn::OddEven(word(2), word(1));
    const size_t step = hn::Lanes(bytes_tag_t());
    size_t x = 0;
    for (; width - x >= step; x += step) {
        words_t cb_sums = rounding;
        words_t cr_sums = rounding;
        convert_row(to.y0, cb_sums, cr_sums, row0, x);
        convert_row(to.y1, cb_sums, cr_sums, row1, x);
        store_bytes(hn::ShiftRight<2>(cb_sums), to.cb + x / 2);
        store_bytes(hn::ShiftRight<2>(cr_sums), to.cr + x / 2);
    }
    return x;
}
#endif

void repeat_ends(int16_t* row, size_t width) {
    (row - 1)[0] = row[0];
    row[width] = row[width - 1];
}

void sum_rows(int16_t* to, const unsigned char* nearer, const unsigned char* farther, size_t width) {
    for (size_t x = sum_vectors(to, nearer, farther, width); x < width; ++x) {
        to[x] = static_cast<int16_t>(3 * nearer[x] + farther[x]);
    }
    repeat_ends(to, width);
}

void copy_row(int16_t* to, const unsigned char* row, size_t width) {
    std::copy_n(row, width, to);
    repeat_ends(to, width);
}

template <bool summed>
HWY_INLINE void halve(unsigned char* const* to, const ycc_row_t& row0, const ycc_row_t& row1, size_t width) {
    for (size_t x = halve_vectors<summed>(to, row0, row1, width); x < width; ++x) {
        int sum[3] = {};
        add_pair<summed>(sum, row0, x);
        add_pair<summed>(sum, row1, x);
        for (size_t c = 0; c < 3; ++c) {
            to[c][x] = static_cast<unsigned char>(sum[c] >> 2);
        }
    }
}

void halve_full(unsigned char* const* to, const unsigned char* const* row0, const unsigned char* const* row1,
                size_t width) {
    for (size_t x = halve_full_vectors(to, row0, row1, width); x < width; ++x) {
        int sum[3] = {};
        for (const unsigned char* const* row : {row0, row1}) {
            for (size_t i = 2 * x; i < 2 * x + 2; ++i) {
                add_pixel(sum, row[0][i], row[1][i], row[2][i]);
            }
        }
        for (size_t c = 0; c < 3; ++c) {
            to[c][x] = static_cast<unsigned char>(sum[c] >> 2);
        }
    }
}

void halve_summed(unsigned char* const* to, const ycc_row_t& row0, const ycc_row_t& row1, size_t width) {
    halve<true>(to, row0, row1, width);
}

void halve_plain(unsigned char* const* to, const ycc_row_t& row0, const ycc_row_t& row1, size_t width) {
    halve<false>(to, row0, row1, width);
}

void convert_rows(const ycc_strip_rows_t& to, const unsigned char* const* row0, const unsigned char* const* row1,
                  size_t width) {
    for (size_t x = convert_vectors(to, row0, row1, width); x < width; x += 2) {
        // Rounding alternates so that it favours no direction.
        int cb = x % 4 == 0 ? 1 : 2;
        int cr = cb;
        for (const auto& [y, row] : {std::pair(to.y0, row0), std::pair(to.y1, row1)}) {
            for (size_t i = x; i < x + 2; ++i) {
                y[i] = luma(row[0][i], row[1][i], row[2][i]);
                cb += blue_chroma(row[0][i], row[1][i], row[2][i]);
                cr += red_chroma(row[0][i], row[1][i], row[2][i]);
            }
        }
        to.cb[x / 2] = static_cast<unsigned char>(cb >> 2);
        to.cr[x / 2] = static_cast<unsigned char>(cr >> 2);
    }
}

}  // namespace
}  // namespace libgr::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace libgr {

HWY_EXPORT(sum_rows);
HWY_EXPORT(copy_row);
HWY_EXPORT(halve_summed);
HWY_EXPORT(halve_plain);
HWY_EXPORT(halve_full);
HWY_EXPORT(convert_rows);

void sum_chroma_rows(int16_t* to, const unsigned char* nearer, const unsigned char* farther, size_t width) {
    HWY_DYNAMIC_DISPATCH(sum_rows)(to, nearer, farther, width);
}

void copy_chroma_row(int16_t* to, const unsigned char* row, size_t width) {
    HWY_DYNAMIC_DISPATCH(copy_row)(to, row, width);
}

void halve_ycc_rows(unsigned char* const to[3], const ycc_row_t& row0, const ycc_row_t& row1, size_t width,
                    bool summed) {
    if (summed) {
        HWY_DYNAMIC_DISPATCH(halve_summed)(to, row0, row1, width);
    } else {
        HWY_DYNAMIC_DISPATCH(halve_plain)(to, row0, row1, width);
    }
}

void halve_full_ycc_rows(unsigned char* const to[3], const unsigned char* const row0[3],
                         const unsigned char* const row1[3], size_t width) {
    HWY_DYNAMIC_DISPATCH(halve_full)(to, row0, row1, width);
}

void convert_rgb_rows(const ycc_strip_rows_t& to, const unsigned char* const row0[3],
                      const unsigned char* const row1[3], size_t width) {
    HWY_DYNAMIC_DISPATCH(convert_rows)(to, row0, row1, width);
}

}  // namespace libgr
#endif
