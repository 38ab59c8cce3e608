#pragma once

#include "libgr/image/image2d.h"

namespace libgr {

// Halves `src` in both directions: each component is the integer average, rounded down, of the 2 x 2 block at columns
// 2x and 2x + 1 of buffer rows 2y and 2y + 1. An odd last column, and of an odd height the last buffer row (the
// picture's top row), is dropped; a source of width or height 1 gives an empty picture and true. `dst` may be `src`.
// Formats GRAYSCALE, RGB, BGR, RGBA and BGRA of 8 bits; reports any other, and a failing allocation, and returns false.
[[nodiscard]] bool scaledown(image2d_t& dst, const image2d_t& src);

// Turns `src` clockwise by count quarter turns (0 to 3; 0 shares the pixels). `dst` may be `src`. False, without a
// message, for any other count, for pixels that are no whole bytes, and when memory is short.
[[nodiscard]] bool rotate(unsigned long count, image2d_t& dst, const image2d_t& src);

// Adds the turn that an EXIF Orientation asks for to a count of clockwise quarter turns: 6 adds 1, 3 adds 2, 8 takes 1
// away, modulo 4; any other value leaves the count as it is.
[[nodiscard]] unsigned long mixorientandrightrotatecount(unsigned long count, unsigned long orientation);

}  // namespace libgr
