#include "libgr/image/image_desc.h"

#include <array>

#include "libutils/diagnostics.h"

namespace libgr {

namespace {

// Components per pixel, in the order of e_image_format_t.
constexpr std::array<uint32_t, IMAGE_FORMAT_MAX> s_image_format_components_list = {
    1,  // GRAYSCALE
    2,  // GRAYSCALE_ALPHA
    1,  // INTENSITY
    1,  // RED
    1,  // GREEN
    1,  // BLUE
    1,  // ALPHA
    2,  // RG
    3,  // RGB
    4,  // RGBA
    3,  // BGR
    4,  // BGRA
    1,  // DEPTH
    1,  // DEPTH_STENCIL
    3,  // YCbCr
    4,  // YCbCrA
    1,  // YCbCr422
    1,  // INDEX
};

struct image_bits_t {
    uint32_t component;  // bits per component, 0 for packed layouts
    uint32_t packed;     // bits of the whole pixel, 0 for the others
};

// In the order of e_image_bits_t.
constexpr std::array<image_bits_t, IMAGE_BITS_MAX> s_image_bits_list = {{
    {1, 0},
    {2, 0},
    {4, 0},
    {8, 0},
    {12, 0},
    {16, 0},
    {24, 0},
    {32, 0},
    {64, 0},
    {0, 8},   // R3G3B2
    {0, 16},  // R5G6B5
    {0, 16},  // R5G5B5A1
    {0, 32},  // R10G10B10A2
    {0, 8},   // L6A2
    {0, 16},  // L12A4
    {0, 32},  // D24S8
}};

constexpr std::array<const char*, IMAGE_FORMAT_MAX> format_names = {
    "IMAGE_FORMAT_GRAYSCALE", "IMAGE_FORMAT_GRAYSCALE_ALPHA",
    "IMAGE_FORMAT_INTENSITY", "IMAGE_FORMAT_RED",
    "IMAGE_FORMAT_GREEN",     "IMAGE_FORMAT_BLUE",
    "IMAGE_FORMAT_ALPHA",     "IMAGE_FORMAT_RG",
    "IMAGE_FORMAT_RGB",       "IMAGE_FORMAT_RGBA",
    "IMAGE_FORMAT_BGR",       "IMAGE_FORMAT_BGRA",
    "IMAGE_FORMAT_DEPTH",     "IMAGE_FORMAT_DEPTH_STENCIL",
    "IMAGE_FORMAT_YCbCr",     "IMAGE_FORMAT_YCbCrA",
    "IMAGE_FORMAT_YCbCr422",  "IMAGE_FORMAT_INDEX",
};

constexpr std::array<const char*, IMAGE_TYPE_MAX> type_names = {"IMAGE_TYPE_SINT", "IMAGE_TYPE_UINT",
                                                                "IMAGE_TYPE_FLOAT"};

constexpr std::array<const char*, IMAGE_BITS_MAX> bits_names = {
    "IMAGE_BITS_1",           "IMAGE_BITS_2",      "IMAGE_BITS_4",      "IMAGE_BITS_8",
    "IMAGE_BITS_12",          "IMAGE_BITS_16",     "IMAGE_BITS_24",     "IMAGE_BITS_32",
    "IMAGE_BITS_64",          "IMAGE_BITS_R3G3B2", "IMAGE_BITS_R5G6B5", "IMAGE_BITS_R5G5B5A1",
    "IMAGE_BITS_R10G10B10A2", "IMAGE_BITS_L6A2",   "IMAGE_BITS_L12A4",  "IMAGE_BITS_D24S8",
};

template <size_t N>
std::ostream& write_name(std::ostream& out, const std::array<const char*, N>& names, uint32_t value) {
    if (value < N) {
        return out << names[value];
    }
    return out << libutils::join_text("unknown: ", value);
}

}  // namespace

uint32_t image_desc_t::getPixelBits() const {
    if (format >= IMAGE_FORMAT_MAX || bits >= IMAGE_BITS_MAX) {
        return 0;
    }
    const image_bits_t& layout = s_image_bits_list[bits];
    return layout.packed != 0 ? layout.packed : s_image_format_components_list[format] * layout.component;
}

std::ostream& operator<<(std::ostream& out, e_image_format_t format) {
    return write_name(out, format_names, format);
}
std::ostream& operator<<(std::ostream& out, e_image_type_t type) {
    return write_name(out, type_names, type);
}
std::ostream& operator<<(std::ostream& out, e_image_bits_t bits) {
    return write_name(out, bits_names, bits);
}

}  // namespace libgr
