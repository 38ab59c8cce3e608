#pragma once

#include <cstdint>

namespace libgr {

// Halving of pixel rows of bytes with the processor's vectors: each component is the integer average, rounded down, of
// a 2 x 2 block, columns 2x and 2x + 1 of both rows. An odd last column is dropped.

// One row of `width` pixels of `components` (1, 3 or 4) bytes, from two rows of 2 * width pixels or one more. False,
// and nothing written, for another number of components.
[[nodiscard]] bool halve_rows(unsigned char* to, const unsigned char* row0, const unsigned char* row1, uint32_t width,
                              unsigned components);

// The same from two rows of RGB, each component into a row of its own.
void halve_rgb_rows(unsigned char* const to[3], const unsigned char* row0, const unsigned char* row1, uint32_t width);

}  // namespace libgr
