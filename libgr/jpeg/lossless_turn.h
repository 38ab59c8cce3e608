#pragma once

#include "libgr/jpeg/jpegdata.h"

namespace libgr {

// Turns the JPEG in `src` clockwise by `count` quarter turns (0 to 3) without decoding it to pixels and
// writes the new stream to `dst`. APPn and COM segments are not carried over.
//
// Blocks of a partial iMCU at the edge that would have to change sides stay where they are, so no pixel
// is lost. Coefficients that no 8-bit picture can have, in a damaged file, are cut to what can be written;
// libjpeg's warning tells. `dst` may be `src`; it keeps its name.
//
// Returns false, after a message on standard error, when `count` is over 3 or `src` can't be read to its
// end, and leaves `dst` alone; also false when libjpeg warned, and `dst` then holds the stream all the same.
[[nodiscard]] bool transform(unsigned long count, jpegdata_t& dst, const jpegdata_t& src);

}  // namespace libgr
