#pragma once

#include "libgr/exif/tiff_header.h"

namespace taloram {

// EXIF Orientation (0x0112) of the picture: 1 to 8; 1 where the data has none or another value. It stands in the first
// directory and so is known even when a later part of the data is broken.
[[nodiscard]] unsigned long picture_orientation(const libgr::tiff_header_t& tiff);

// 5 to 8: the rows of the file are the columns of the scene.
[[nodiscard]] constexpr bool swaps_sides(unsigned long orientation) {
    return orientation >= 5;
}

// 2, 4, 5 and 7 ask for a mirrored scene, which a turn alone can't make.
[[nodiscard]] constexpr bool is_mirrored(unsigned long orientation) {
    return orientation == 2 || orientation == 4 || orientation == 5 || orientation == 7;
}

}  // namespace taloram
