#include "libgr/pyramid/dct.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>

#include "libgr/markers/zigzag.h"

// Compiled once for every kind of vectors; the running processor decides which is called.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "libgr/pyramid/dct.cpp"
#include <hwy/foreach_target.h>
// It needs foreach_target.h before it.
#include <hwy/highway.h>

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

// Coefficients of 1 to 255 times a table, added up over two columns that a transform adds, stay below this, so that no
// 16 bits overflow: 4 * 1.3871 * 5792 < 32768. Those of a picture reach 4096.
constexpr int max_column_sum = 5792;
// Of samples that are not yet cut to 0 to 255, less 128; libjpeg's own table for the cut ends there.
constexpr int max_sample = 512;

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

// One dimension, from samples to coefficients: of v[i * step] for i from 0 to 7.
template <bool second, typename Words>
HWY_INLINE void forward_pass(Words* v, size_t step) {
    constexpr int bits = second ? factor_bits + between_bits : factor_bits - between_bits;
    constexpr int half = 1 << (bits - 1);
    const Words sum07 = v[0] + v[7 * step];
    const Words sum16 = v[step] + v[6 * step];
    const Words sum25 = v[2 * step] + v[5 * step];
    const Words sum34 = v[3 * step] + v[4 * step];
    const auto odd =
        odd_half(v[3 * step] - v[4 * step], v[2 * step] - v[5 * step], v[step] - v[6 * step], v[0] - v[7 * step]);
    const Words even0 = sum07 + sum34;
    const Words even1 = sum16 + sum25;
    if constexpr (second) {
        v[0] = rounded<between_bits>(even0 + even1);
        v[4 * step] = rounded<between_bits>(even0 - even1);
    } else {
        v[0] = with_more_bits<between_bits>(even0 + even1);
        v[4 * step] = with_more_bits<between_bits>(even0 - even1);
    }
    const auto even = turned(sum07 - sum34, sum16 - sum25);
    v[2 * step] = without_bits<bits>(even.first + half);
    v[6 * step] = without_bits<bits>(even.second + half);
    v[7 * step] = without_bits<bits>(odd.a + half);
    v[5 * step] = without_bits<bits>(odd.b + half);
    v[3 * step] = without_bits<bits>(odd.c + half);
    v[step] = without_bits<bits>(odd.d + half);
}

// One dimension, from coefficients to samples.
template <bool second, typename Words>
HWY_INLINE void inverse_pass(Words* v, size_t step) {
    constexpr int bits = second ? factor_bits + between_bits + both_passes_bits : factor_bits - between_bits;
    constexpr int half = 1 << (bits - 1);
    constexpr int one = 1 << factor_bits;
    const auto even = turned(v[2 * step], v[6 * step]);
    const auto sum = weighted_sum(v[0], one, v[4 * step], one) + half;
    const auto difference = weighted_sum(v[0], one, v[4 * step], -one) + half;
    const auto odd = odd_half(v[7 * step], v[5 * step], v[3 * step], v[step]);
    const auto even0 = sum + even.first;
    const auto even1 = difference + even.second;
    const auto even2 = difference - even.second;
    const auto even3 = sum - even.first;
    v[0] = without_bits<bits>(even0 + odd.d);
    v[step] = without_bits<bits>(even1 + odd.c);
    v[2 * step] = without_bits<bits>(even2 + odd.b);
    v[3 * step] = without_bits<bits>(even3 + odd.a);
    v[4 * step] = without_bits<bits>(even3 - odd.a);
    v[5 * step] = without_bits<bits>(even2 - odd.b);
    v[6 * step] = without_bits<bits>(even1 - odd.c);
    v[7 * step] = without_bits<bits>(even0 - odd.d);
}

// Where a coefficient of a group lies.
constexpr size_t place(size_t block, size_t index) {
    return index / block_side * group_columns + block * block_side + index % block_side;
}

// What the vectors below compute, one block after the other.
void forward_plain(coded_group_t& to, const unsigned char* const* rows, size_t x, const quantiser_t& quantiser) {
    for (size_t block = 0; block < group_blocks; ++block, x += block_side) {
        std::array<plain_t, block_size> values;
        for (size_t i = 0; i < block_size; ++i) {
            values[i] = rows[i / block_side][x + i % block_side] - zero_sample;
        }
        for (size_t i = 0; i < block_side; ++i) {
            forward_pass<false>(&values[i * block_side], 1);
        }
        for (size_t i = 0; i < block_side; ++i) {
            forward_pass<true>(&values[i], block_side);
        }
        to.present[block] = 0;
        for (size_t k = 0; k < block_size; ++k) {
            const size_t i = zigzag_to_array[k];
            const int divisor = 2 * quantiser.half[i];
            const auto size = (std::abs(static_cast<int>(values[i])) + divisor / 2) / divisor;
            to.bits[place(block, i)] = static_cast<int16_t>(values[i] < 0 ? -size - 1 : size);
            to.sizes[place(block, i)] = static_cast<int16_t>(std::bit_width(static_cast<unsigned>(size)));
            to.present[block] |= uint64_t{size != 0} << k;
        }
    }
}

bool inverse_plain(unsigned char* const* rows, size_t x, const coefficient_group_t& group, const uint16_t* table) {
    bool sound = true;
    for (size_t block = 0; block < group_blocks; ++block, x += block_side) {
        std::array<plain_t, block_size> values;
        std::array<plain_t, block_side> sums{};
        for (size_t i = 0; i < block_size; ++i) {
            values[i] = group.values[place(block, i)] * plain_t{table[i]};
            sums[i % block_side] += std::abs(values[i]);
        }
        for (size_t i = 0; i < block_side; ++i) {
            sound = sound && sums[i] + sums[(i + 4) % block_side] <= max_column_sum;
            inverse_pass<false>(&values[i], block_side);
        }
        for (size_t y = 0; y < block_side; ++y) {
            inverse_pass<true>(&values[y * block_side], 1);
            for (size_t i = 0; i < block_side; ++i) {
                const plain_t sample = values[y * block_side + i];
                sound = sound && sample >= -max_sample && sample < max_sample;
                rows[y][x + i] = static_cast<unsigned char>(std::clamp<plain_t>(sample + zero_sample, 0, 255));
            }
        }
    }
    return sound;
}

#if HWY_TARGET == HWY_SCALAR
HWY_INLINE void forward_group(coded_group_t& to, const unsigned char* const* rows, size_t x,
                              const quantiser_t& quantiser) {
    forward_plain(to, rows, x, quantiser);
}

HWY_INLINE bool inverse_group(unsigned char* const* rows, size_t x, const coefficient_group_t& group,
                              const uint16_t* table) {
    return inverse_plain(rows, x, group, table);
}
#else
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
    for (const size_t i : {0, 2, 4, 6}) {
        interleave<int16_t>(v[i], v[i + 1]);
    }
    for (const size_t i : {0, 1, 4, 5}) {
        interleave<int32_t>(v[i], v[i + 2]);
    }
    for (const size_t i : {0, 1, 2, 3}) {
        interleave<int64_t>(v[i], v[i + 4]);
    }
    // In order of the columns.
    std::swap(v[1], v[4]);
    std::swap(v[3], v[6]);
}

HWY_INLINE auto load_factors(const std::array<uint16_t, block_size>& factors, size_t row) {
    return hn::LoadDup128(unsigned_words_tag, &factors[row * block_side]);
}

// For a half byte in its lower, upper, and third four bits: the bits of the number that ends with it.
alignas(16) constexpr uint8_t low_sizes[] = {0, 1, 2, 2, 3, 3, 3, 3, 4, 4, 4, 4, 4, 4, 4, 4};
alignas(16) constexpr uint8_t middle_sizes[] = {0, 5, 6, 6, 7, 7, 7, 7, 8, 8, 8, 8, 8, 8, 8, 8};
alignas(16) constexpr uint8_t high_sizes[] = {0, 9, 10, 10, 11, 11, 11, 11, 12, 12, 12, 12, 12, 12, 12, 12};

// Bits of the numbers whose lower and upper bytes these are, which have 12 at most.
HWY_INLINE bytes_t sizes_of(bytes_t lower, bytes_t upper) {
    constexpr bytes_tag_t tag;
    const auto half = hn::Set(tag, uint8_t{15});
    const auto middle = hn::And(hn::BitCast(tag, hn::ShiftRight<4>(hn::BitCast(unsigned_words_tag, lower))), half);
    return hn::Max(hn::Max(hn::TableLookupBytes(hn::LoadDup128(tag, low_sizes), hn::And(lower, half)),
                           hn::TableLookupBytes(hn::LoadDup128(tag, middle_sizes), middle)),
                   hn::TableLookupBytes(hn::LoadDup128(tag, high_sizes), upper));
}

// Where in two rows, whose bytes alternate, the coefficients lie that a quarter of the zigzag order holds; an index
// over 127 gives 0.
struct zigzag_lookup_t {
    alignas(16) uint8_t index[4][4][16];  // quarter, pair of rows
};

constexpr zigzag_lookup_t make_zigzag_lookup() {
    zigzag_lookup_t lookup{};
    for (size_t k = 0; k < block_size; ++k) {
        const size_t row = zigzag_to_array[k] / block_side;
        const size_t column = zigzag_to_array[k] % block_side;
        for (size_t pair = 0; pair < 4; ++pair) {
            lookup.index[k / 16][pair][k % 16] = static_cast<uint8_t>(pair == row / 2 ? 2 * column + row % 2 : 0x80);
        }
    }
    return lookup;
}

constexpr zigzag_lookup_t zigzag_lookup = make_zigzag_lookup();

// Tells which coefficients are not 0, from their sizes by pairs of rows.
HWY_INLINE void find_present(uint64_t* present, const bytes_t* sizes) {
    constexpr bytes_tag_t tag;
    std::array<uint64_t, vector_blocks> found{};
    for (size_t quarter = 0; quarter < 4; ++quarter) {
        const auto look_up = [&](size_t pair) {
            return hn::TableLookupBytesOr0(sizes[pair], hn::LoadDup128(tag, zigzag_lookup.index[quarter][pair]));
        };
        const auto ordered = hn::Or(hn::Or(look_up(0), look_up(1)), hn::Or(look_up(2), look_up(3)));
        std::array<uint8_t, 8> mask{};
        hn::StoreMaskBits(tag, hn::Ne(ordered, hn::Zero(tag)), mask.data());
        for (size_t block = 0; block < vector_blocks; ++block) {
            found[block] |= (uint64_t{mask[2 * block]} | uint64_t{mask[2 * block + 1]} << 8) << (16 * quarter);
        }
    }
    std::copy(found.begin(), found.end(), present);
}

// Quantises the coefficients, which are 8 times too large.
HWY_INLINE void quantise(coded_group_t& to, size_t block, const words_t* values, const quantiser_t& quantiser) {
    bytes_t sizes[4];
    for (size_t pair = 0; pair < 4; ++pair) {
        hn::VFromD<unsigned_words_tag_t> magnitudes[2];
        for (size_t i = 0; i < 2; ++i) {
            const size_t row = 2 * pair + i;
            const auto positive = hn::BitCast(unsigned_words_tag, hn::Abs(values[row]));
            const auto rounded_up = hn::Add(positive, load_factors(quantiser.half, row));
            magnitudes[i] = hn::MulHigh(hn::MulHigh(rounded_up, load_factors(quantiser.reciprocal, row)),
                                        load_factors(quantiser.scale, row));
            const auto sign = hn::ShiftRight<15>(values[row]);
            hn::StoreU(hn::Xor(hn::BitCast(words_tag, magnitudes[i]), sign), words_tag,
                       &to.bits[place(block, 8 * row)]);
        }
        const auto low_byte = hn::Set(unsigned_words_tag, uint16_t{0xFF});
        const auto lower = hn::Or(hn::And(magnitudes[0], low_byte), hn::ShiftLeft<8>(magnitudes[1]));
        const auto upper = hn::Or(hn::ShiftRight<8>(magnitudes[0]), hn::AndNot(low_byte, magnitudes[1]));
        sizes[pair] = sizes_of(hn::BitCast(bytes_tag_t(), lower), hn::BitCast(bytes_tag_t(), upper));
        const auto both = hn::BitCast(unsigned_words_tag, sizes[pair]);
        const auto store = [&](auto row_sizes, size_t row) {
            hn::StoreU(hn::BitCast(words_tag, row_sizes), words_tag, &to.sizes[place(block, 8 * row)]);
        };
        store(hn::And(both, low_byte), 2 * pair);
        store(hn::ShiftRight<8>(both), 2 * pair + 1);
    }
    find_present(&to.present[block], sizes);
}

HWY_INLINE void forward_group(coded_group_t& to, const unsigned char* const* rows, size_t x,
                              const quantiser_t& quantiser) {
    for (size_t block = 0; block < group_blocks; block += vector_blocks) {
        words_t v[block_side];
        for (size_t y = 0; y < block_side; ++y) {
            v[y] = hn::Sub(load_bytes(rows[y] + x + block * block_side), word(zero_sample));
        }
        transpose(v);
        forward_pass<false>(v, 1);
        transpose(v);
        forward_pass<true>(v, 1);
        quantise(to, block, v, quantiser);
    }
}

// What is not 0 in the result has overflowed or is too large.
HWY_INLINE words_t dequantise(words_t* values, const int16_t* from, const uint16_t* table) {
    auto sums = hn::Zero(unsigned_words_tag);
    words_t overflow = hn::Zero(words_tag);
    for (size_t y = 0; y < block_side; ++y) {
        const words_t coefficients = hn::LoadU(words_tag, from + y * group_columns);
        const words_t factors = hn::BitCast(words_tag, hn::LoadDup128(unsigned_words_tag, table + y * block_side));
        values[y] = hn::Mul(coefficients, factors);
        overflow = hn::Or(overflow, hn::Xor(hn::MulHigh(coefficients, factors), hn::ShiftRight<15>(values[y])));
        sums = hn::SaturatedAdd(sums, hn::BitCast(unsigned_words_tag, hn::Abs(values[y])));
    }
    constexpr hn::Repartition<uint64_t, words_tag_t> halves_tag;
    const auto others = hn::BitCast(unsigned_words_tag, hn::Shuffle01(hn::BitCast(halves_tag, sums)));
    const auto excess = hn::SaturatedSub(hn::SaturatedAdd(sums, others), hn::Set(unsigned_words_tag, max_column_sum));
    return hn::Or(overflow, hn::BitCast(words_tag, excess));
}

HWY_INLINE bool inverse_group(unsigned char* const* rows, size_t x, const coefficient_group_t& group,
                              const uint16_t* table) {
    words_t unsound = hn::Zero(words_tag);
    for (size_t block = 0; block < group_blocks; block += vector_blocks) {
        words_t v[block_side];
        unsound = hn::Or(unsound, dequantise(v, &group.values[place(block, 0)], table));
        inverse_pass<false>(v, 1);
        transpose(v);
        inverse_pass<true>(v, 1);
        transpose(v);
        words_t beyond = hn::Zero(words_tag);
        for (size_t y = 0; y < block_side; ++y) {
            beyond = hn::Or(beyond, hn::Add(v[y], word(max_sample)));
            store_bytes(hn::Add(v[y], word(zero_sample)), rows[y] + x + block * block_side);
        }
        unsound = hn::Or(unsound, hn::And(beyond, word(-2 * max_sample)));
    }
    return hn::AllTrue(words_tag, hn::Eq(unsound, hn::Zero(words_tag)));
}
#endif

// Without other coefficients all samples of a block are the same.
bool inverse_flat(unsigned char* const* rows, size_t x, const coefficient_group_t& group, int factor) {
    constexpr int bits = both_passes_bits;
    bool sound = true;
    std::array<unsigned char, group_columns> row;
    for (size_t block = 0; block < group_blocks; ++block) {
        const int sample = (group.values[place(block, 0)] * factor + (1 << (bits - 1))) >> bits;
        sound = sound && sample >= -max_sample && sample < max_sample;
        std::fill_n(&row[block * block_side], block_side,
                    static_cast<unsigned char>(std::clamp(sample + zero_sample, 0, 255)));
    }
    for (size_t y = 0; y < block_side; ++y) {
        std::copy(row.begin(), row.end(), rows[y] + x);
    }
    return sound;
}

void forward_groups(coded_group_t* to, size_t count, const unsigned char* const* rows, size_t x,
                    const quantiser_t& quantiser) {
    for (size_t i = 0; i < count; ++i) {
        forward_group(to[i], rows, x + i * group_columns, quantiser);
    }
}

bool inverse_groups(unsigned char* const* rows, size_t x, const coefficient_group_t* groups, const uint8_t* last,
                    size_t count, const uint16_t* table) {
    bool sound = true;
    for (size_t i = 0; i < count && sound; ++i) {
        const size_t at = x + i * group_columns;
        sound = last[i] == 0 ? inverse_flat(rows, at, groups[i], table[0]) : inverse_group(rows, at, groups[i], table);
    }
    return sound;
}

}  // namespace
}  // namespace libgr::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace libgr {

HWY_EXPORT(forward_groups);
HWY_EXPORT(inverse_groups);

namespace {

constexpr std::array<uint8_t, block_size> make_group_index() {
    std::array<uint8_t, block_size> places{};
    for (size_t k = 0; k < block_size; ++k) {
        const size_t i = zigzag_to_array[k];
        places[k] = static_cast<uint8_t>(i / block_side * group_columns + i % block_side);
    }
    return places;
}

}  // namespace

constexpr std::array<uint8_t, block_size> group_index = make_group_index();

// With 2^(b-1) < divisor <= 2^b the reciprocal, 2^(15+b) / divisor rounded up, has 16 bits, and its error is too small
// to show in numbers of 15 bits.
quantiser_t::quantiser_t(const uint16_t* table) {
    for (size_t i = 0; i < block_size; ++i) {
        const unsigned divisor = 8U * table[i];
        const int bits = std::bit_width(divisor - 1);
        half[i] = static_cast<uint16_t>(divisor / 2);
        reciprocal[i] = static_cast<uint16_t>(((1U << (15 + bits)) + divisor - 1) / divisor);
        scale[i] = static_cast<uint16_t>(1U << (17 - bits));
    }
}

void forward_dct(coded_group_t* to, size_t count, const unsigned char* const rows[block_side], size_t x,
                 const quantiser_t& quantiser) {
    HWY_DYNAMIC_DISPATCH(forward_groups)(to, count, rows, x, quantiser);
}

bool inverse_dct(unsigned char* const rows[block_side], size_t x, const coefficient_group_t* groups,
                 const uint8_t* last, size_t count, const uint16_t* table) {
    return HWY_DYNAMIC_DISPATCH(inverse_groups)(rows, x, groups, last, count, table);
}

void forward_dct_plain(coded_group_t& to, const unsigned char* const rows[block_side], size_t x,
                       const quantiser_t& quantiser) {
    HWY_STATIC_DISPATCH(forward_plain)(to, rows, x, quantiser);
}

bool inverse_dct_plain(unsigned char* const rows[block_side], size_t x, const coefficient_group_t& group,
                       const uint16_t* table) {
    return HWY_STATIC_DISPATCH(inverse_plain)(rows, x, group, table);
}

}  // namespace libgr
#endif
