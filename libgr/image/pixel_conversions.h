#pragma once

#include "libgr/image/image2d.h"

namespace libgr {

// Conversions of 8-bit pictures into a new buffer, which `dst` then holds; `dst` may be `src`. They return false,
// without a message, when `src` has not the format that the name begins with or memory is short. An added alpha channel
// is opaque (255). A palette entry keeps its high byte; an index past the palette's end is black.
[[nodiscard]] bool bgr2rgb(image2d_t& dst, const image2d_t& src);
[[nodiscard]] bool rgb2bgr(image2d_t& dst, const image2d_t& src);
[[nodiscard]] bool rgb2rgba(image2d_t& dst, const image2d_t& src);
[[nodiscard]] bool rgba2rgb(image2d_t& dst, const image2d_t& src);
[[nodiscard]] bool index2rgb(image2d_t& dst, const image2d_t& src);

// A plain copy of any format with pixels of its own.
[[nodiscard]] bool copy(image2d_t& dst, const image2d_t& src);

}  // namespace libgr
