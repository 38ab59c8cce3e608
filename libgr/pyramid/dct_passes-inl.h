// What the forward and the inverse transform share, for code that is compiled once for every kind of vectors; included
// behind highway.h.
#if defined(LIBGR_DCT_PASSES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LIBGR_DCT_PASSES_INL_H
#undef LIBGR_DCT_PASSES_INL_H
#else
#define LIBGR_DCT_PASSES_INL_H
#endif

#include <utility>

#include <hwy/highway.h>

#include "libgr/pyramid/dct.h"
#include "libgr/pyramid/word_vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace libgr::HWY_NAMESPACE {
namespace {

constexpr int zero_sample = 128;  // ITU-T T.81 A.3.1

// C. Loeffler, A. Ligtenberg and G. Moschytz, "Practical Fast 1-D DCT Algorithms with 11 Multiplications", ICASSP 1989,
// for the transforms of ITU-T T.81 A.3.3. Factors have 13 bits after the point, values two between the passes. A pass
// makes its results larger by the square root of 8.
constexpr int factor_bits = 13;
constexpr int between_bits = 2;
constexpr int both_passes_bits = 3;
constexpr int fixed(double factor) {
    return static_cast<int>(factor * (1 << factor_bits) + 0.5);
}

// What the transforms compute with: plain numbers for one row or column, or vectors for many. Sums of products of
// vectors have 32 bits.
using plain_t = int64_t;

HWY_INLINE plain_t weighted_sum(plain_t a, int a_factor, plain_t b, int b_factor) {
    return a * a_factor + b * b_factor;
}

template <int bits>
HWY_INLINE plain_t without_bits(plain_t sum) {
    return sum >> bits;
}

template <int bits>
HWY_INLINE plain_t with_more_bits(plain_t value) {
    return value * (1 << bits);
}

template <int bits>
HWY_INLINE plain_t rounded(plain_t value) {
    return (value + (1 << (bits - 1))) >> bits;
}

#if HWY_TARGET != HWY_SCALAR
static_assert(hn::MaxLanes(words_tag) <= group_columns && hn::MaxLanes(words_tag) % block_side == 0,
              "a vector holds one, two or four rows of blocks");

// Of each 128 bits, the sums for the lower and for the upper words.
struct long_halves_t {
    longs_t lower;
    longs_t upper;
};

HWY_INLINE long_halves_t operator+(const long_halves_t& a, const long_halves_t& b) {
    return {hn::Add(a.lower, b.lower), hn::Add(a.upper, b.upper)};
}

HWY_INLINE long_halves_t operator-(const long_halves_t& a, const long_halves_t& b) {
    return {hn::Sub(a.lower, b.lower), hn::Sub(a.upper, b.upper)};
}

HWY_INLINE long_halves_t operator+(const long_halves_t& a, int b) {
    return {hn::Add(a.lower, hn::Set(longs_tag, b)), hn::Add(a.upper, hn::Set(longs_tag, b))};
}

HWY_INLINE long_halves_t weighted_sum(words_t a, int a_factor, words_t b, int b_factor) {
    return {sum_of_products(hn::InterleaveLower(words_tag, a, b), a_factor, b_factor),
            sum_of_products(hn::InterleaveUpper(words_tag, a, b), a_factor, b_factor)};
}

template <int bits>
HWY_INLINE words_t without_bits(const long_halves_t& sums) {
    return hn::ReorderDemote2To(words_tag, hn::ShiftRight<bits>(sums.lower), hn::ShiftRight<bits>(sums.upper));
}

template <int bits>
HWY_INLINE words_t with_more_bits(words_t values) {
    return hn::ShiftLeft<bits>(values);
}

template <int bits>
HWY_INLINE words_t rounded(words_t values) {
    return hn::ShiftRight<bits>(hn::Add(values, word(1 << (bits - 1))));
}
#endif

template <typename Sums>
struct turned_t {
    Sums first;
    Sums second;
};

// The turn by 3/8 pi in the even half of both transforms.
template <typename Words>
HWY_INLINE auto turned(Words a, Words b) {
    constexpr int common = fixed(0.541196100);
    const auto first = weighted_sum(a, common + fixed(0.765366865), b, common);
    return turned_t<decltype(weighted_sum(a, 0, b, 0))>{first, weighted_sum(a, common, b, common - fixed(1.847759065))};
}

template <typename Sums>
struct odd_half_t {
    Sums a;
    Sums b;
    Sums c;
    Sums d;
};

// The odd half of both transforms.
template <typename Words>
HWY_INLINE auto odd_half(Words a, Words b, Words c, Words d) {
    constexpr int common = fixed(1.175875602);
    constexpr int ad = -fixed(0.899976223);
    constexpr int bc = -fixed(2.562915447);
    const Words ac_sum = a + c;
    const Words bd_sum = b + d;
    const auto ac = weighted_sum(ac_sum, common - fixed(1.961570560), bd_sum, common);
    const auto bd = weighted_sum(ac_sum, common, bd_sum, common - fixed(0.390180644));
    return odd_half_t<decltype(weighted_sum(a, 0, b, 0))>{
        weighted_sum(a, fixed(0.298631336) + ad, d, ad) + ac, weighted_sum(b, fixed(2.053119869) + bc, c, bc) + bd,
        weighted_sum(b, bc, c, fixed(3.072711026) + bc) + ac, weighted_sum(a, ad, d, fixed(1.501321110) + ad) + bd};
}

// Where a coefficient of a group lies.
constexpr size_t place(size_t block, size_t index) {
    return index / block_side * group_columns + block * block_side + index % block_side;
}

#if HWY_TARGET != HWY_SCALAR
constexpr size_t vector_blocks = hn::MaxLanes(words_tag) / block_side;

template <typename Number>
HWY_INLINE void interleave(words_t& a, words_t& b) {
    constexpr hn::Repartition<Number, words_tag_t> tag;
    const auto lower = hn::InterleaveLower(tag, hn::BitCast(tag, a), hn::BitCast(tag, b));
    b = hn::BitCast(words_tag, hn::InterleaveUpper(tag, hn::BitCast(tag, a), hn::BitCast(tag, b)));
    a = hn::BitCast(words_tag, lower);
}

// Swaps rows and columns of every block.
HWY_INLINE void transpose(words_t* v) {
    for (const unsigned i : {0U, 2U, 4U, 6U}) {
        interleave<int16_t>(v[i], v[i + 1]);
    }
    for (const unsigned i : {0U, 1U, 4U, 5U}) {
        interleave<int32_t>(v[i], v[i + 2]);
    }
    for (const unsigned i : {0U, 1U, 2U, 3U}) {
        interleave<int64_t>(v[i], v[i + 4]);
    }
    // In order of the columns.
    std::swap(v[1], v[4]);
    std::swap(v[3], v[6]);
}

#endif

}  // namespace
}  // namespace libgr::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif
