#include "libgr/pyramid/dct.h"

#include <algorithm>
#include <cstdlib>

// Compiled once for every kind of vectors; the running processor decides which is called.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "libgr/pyramid/inverse_dct.cpp"
#include <hwy/foreach_target.h>
// It needs foreach_target.h before it.
#include <hwy/highway.h>

#include "libgr/pyramid/dct_passes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace libgr::HWY_NAMESPACE {
namespace {

// Coefficients of 1 to 255 times a table, added up over two columns that a transform adds, stay below this, so that no
// 16 bits overflow: 4 * 1.3871 * 5792 < 32768. Those of a picture reach 4096.
constexpr int max_column_sum = 5792;
// Of samples that are not yet cut to 0 to 255, less 128; libjpeg's own table for the cut ends there.
constexpr int max_sample = 512;

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

// What the vectors below compute, one block after the other.
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
HWY_INLINE bool inverse_group(unsigned char* const* rows, size_t x, const coefficient_group_t& group,
                              const uint16_t* table) {
    return inverse_plain(rows, x, group, table);
}
#else
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

bool inverse_groups(unsigned char* const* rows, size_t x, const coefficient_group_t* groups, size_t count,
                    const uint16_t* table) {
    bool sound = true;
    for (size_t i = 0; i < count && sound; ++i) {
        const size_t at = x + i * group_columns;
        sound = groups[i].last == 0 ? inverse_flat(rows, at, groups[i], table[0])
                                    : inverse_group(rows, at, groups[i], table);
    }
    return sound;
}

}  // namespace
}  // namespace libgr::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace libgr {

HWY_EXPORT(inverse_groups);

bool inverse_dct(unsigned char* const rows[block_side], size_t x, const coefficient_group_t* groups, size_t count,
                 const uint16_t* table) {
    return HWY_DYNAMIC_DISPATCH(inverse_groups)(rows, x, groups, count, table);
}

bool inverse_dct_plain(unsigned char* const rows[block_side], size_t x, const coefficient_group_t& group,
                       const uint16_t* table) {
    return HWY_STATIC_DISPATCH(inverse_plain)(rows, x, group, table);
}

}  // namespace libgr
#endif
