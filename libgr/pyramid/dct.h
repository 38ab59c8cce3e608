#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "libgr/markers/zigzag.h"

namespace libgr {

// The transforms between samples and coefficients of 8 x 8 blocks, with the processor's vectors: libjpeg's accurate
// integer method and its quantisation, so that every number is the one that libjpeg itself would get. Blocks that lie
// side by side go in groups of four, as many as the widest vectors hold.
constexpr size_t block_side = 8;
constexpr size_t block_size = block_side * block_side;
constexpr size_t group_blocks = 4;
constexpr size_t group_columns = group_blocks * block_side;
constexpr size_t group_size = group_blocks * block_size;

// Where coefficient k of a group's first block is, in zigzag order: row after row, of all four blocks. Those of block b
// are 8 * b further on.
inline constexpr auto group_index = [] {
    std::array<uint8_t, block_size> places{};
    for (size_t k = 0; k < block_size; ++k) {
        const size_t i = zigzag_to_array[k];
        places[k] = static_cast<uint8_t>(i / block_side * group_columns + i % block_side);
    }
    return places;
}();

// Divides coefficients by one quantisation table, rounded to the nearest.
class quantiser_t {
  public:
    quantiser_t() = default;
    explicit quantiser_t(const uint16_t* table);  // 64 values of 1 to 255 in natural order

    // n / (8 * q) for 0 <= n < 32768: the upper halves of two products in turn.
    alignas(64) std::array<uint16_t, block_size> half{};  // of a divisor, for rounding
    alignas(64) std::array<uint16_t, block_size> reciprocal{};
    alignas(64) std::array<uint16_t, block_size> scale{};
};

// Four quantised blocks, ready for coding.
struct coded_group_t {
    alignas(64) std::array<int16_t, group_size> bits;   // the value, less one where it is negative
    alignas(64) std::array<int16_t, group_size> sizes;  // bits of the value without its sign
    std::array<uint64_t, group_blocks> present;         // of each block: bit k tells that coefficient k is not 0
};

// Transforms and quantises `count` groups: eight rows from column x on.
void forward_dct(coded_group_t* to, size_t count, const unsigned char* const rows[block_side], size_t x,
                 const quantiser_t& quantiser);

// Four blocks as they come from the decoder: quantised, in the order of group_index.
struct alignas(64) coefficient_group_t {
    std::array<int16_t, group_size + group_columns> values;  // the last ones take what would lie beyond a block
    uint8_t last;  // where in zigzag order the last coefficient is that is not 0, of all four blocks
};

// Multiplies the coefficients of `count` groups by a quantisation table of values of 1 to 255 in natural order and
// transforms them into eight rows from column x on.
//
// False, and the rows are of no use, for coefficients that no picture has: so large that numbers of 16 bits overflow,
// or that samples come out far from 0 to 255. There libjpeg's own results depend on the processor. Coefficients are
// between -max_coefficient and that.
constexpr int max_coefficient = 2047;
[[nodiscard]] bool inverse_dct(unsigned char* const rows[block_side], size_t x, const coefficient_group_t* groups,
                               size_t count, const uint16_t* table);

// What the vectors compute, by plain loops.
void forward_dct_plain(coded_group_t& to, const unsigned char* const rows[block_side], size_t x,
                       const quantiser_t& quantiser);
[[nodiscard]] bool inverse_dct_plain(unsigned char* const rows[block_side], size_t x, const coefficient_group_t& group,
                                     const uint16_t* table);

}  // namespace libgr
