#pragma once

#include <algorithm>
#include <array>

#include "libgr/image/image_desc.h"
#include "libgr/jpeg/libjpeg_bridge.h"

namespace libgr {

// A pixel layout that can pass between libjpeg and images without conversion.
struct jpeg_info_desc_t {
    e_image_format_t format;
    e_image_type_t type;
    e_image_bits_t bits;
    J_COLOR_SPACE color_space;
    int components;
};

constexpr std::array<jpeg_info_desc_t, 3> jpeg_info_desc_table = {{
    {IMAGE_FORMAT_RGB, IMAGE_TYPE_UINT, IMAGE_BITS_8, JCS_RGB, 3},
    {IMAGE_FORMAT_YCbCr, IMAGE_TYPE_UINT, IMAGE_BITS_8, JCS_YCbCr, 3},
    {IMAGE_FORMAT_GRAYSCALE, IMAGE_TYPE_UINT, IMAGE_BITS_8, JCS_GRAYSCALE, 1},
}};

// The first layout for which `fits` is true, null when there is none.
template <typename Fits>
[[nodiscard]] const jpeg_info_desc_t* find_layout(Fits fits) {
    const auto* const row = std::find_if(jpeg_info_desc_table.begin(), jpeg_info_desc_table.end(), fits);
    return row == jpeg_info_desc_table.end() ? nullptr : row;
}

}  // namespace libgr
