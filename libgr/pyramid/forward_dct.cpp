#include "libgr/pyramid/dct.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

// Compiled once for every kind of vectors; the running processor decides which is called.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "libgr/pyramid/forward_dct.cpp"
#include <hwy/foreach_target.h>
// It needs foreach_target.h before it.
#include <hwy/highway.h>

#include "libgr/pyramid/dct_passes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace libgr::HWY_NAMESPACE {
namespace {

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

#if HWY_TARGET == HWY_SCALAR
HWY_INLINE void forward_group(coded_group_t& to, const unsigned char* const* rows, size_t x,
                              const quantiser_t& quantiser) {
    forward_plain(to, rows, x, quantiser);
}
#else
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
#endif

void forward_groups(coded_group_t* to, size_t count, const unsigned char* const* rows, size_t x,
                    const quantiser_t& quantiser) {
    for (size_t i = 0; i < count; ++i) {
        forward_group(to[i], rows, x + i * group_columns, quantiser);
    }
}

}  // namespace
}  // namespace libgr::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace libgr {

HWY_EXPORT(forward_groups);

// With 2^(b-1) < divisor <= 2^b the reciprocal, 2^(15+b) / divisor rounded up, has 16 bits, and its error is too small
// to show in numbers of 15 bits.
quantiser_t::quantiser_t(const uint16_t* table) {
    for (size_t i = 0; i < block_size; ++i) {
        const unsigned divisor = 8U * table[i];
        const auto bits = static_cast<int>(std::bit_width(divisor - 1));
        half[i] = static_cast<uint16_t>(divisor / 2);
        reciprocal[i] = static_cast<uint16_t>(((1U << (15 + bits)) + divisor - 1) / divisor);
        scale[i] = static_cast<uint16_t>(1U << (17 - bits));
    }
}

void forward_dct(coded_group_t* to, size_t count, const unsigned char* const rows[block_side], size_t x,
                 const quantiser_t& quantiser) {
    HWY_DYNAMIC_DISPATCH(forward_groups)(to, count, rows, x, quantiser);
}

void forward_dct_plain(coded_group_t& to, const unsigned char* const rows[block_side], size_t x,
                       const quantiser_t& quantiser) {
    HWY_STATIC_DISPATCH(forward_plain)(to, rows, x, quantiser);
}

}  // namespace libgr
#endif
