#pragma once

#include <cstdint>
#include <ostream>

namespace libgr {

enum e_image_format_t : uint32_t {
    IMAGE_FORMAT_GRAYSCALE,
    IMAGE_FORMAT_GRAYSCALE_ALPHA,
    IMAGE_FORMAT_INTENSITY,
    IMAGE_FORMAT_RED,
    IMAGE_FORMAT_GREEN,
    IMAGE_FORMAT_BLUE,
    IMAGE_FORMAT_ALPHA,
    IMAGE_FORMAT_RG,
    IMAGE_FORMAT_RGB,
    IMAGE_FORMAT_RGBA,
    IMAGE_FORMAT_BGR,
    IMAGE_FORMAT_BGRA,
    IMAGE_FORMAT_DEPTH,
    IMAGE_FORMAT_DEPTH_STENCIL,
    IMAGE_FORMAT_YCbCr,
    IMAGE_FORMAT_YCbCrA,
    IMAGE_FORMAT_YCbCr422,
    IMAGE_FORMAT_INDEX,
    IMAGE_FORMAT_MAX
};

enum e_image_type_t : uint32_t { IMAGE_TYPE_SINT, IMAGE_TYPE_UINT, IMAGE_TYPE_FLOAT, IMAGE_TYPE_MAX };

// Bits per component, then the packed layouts.
enum e_image_bits_t : uint32_t {
    IMAGE_BITS_1,
    IMAGE_BITS_2,
    IMAGE_BITS_4,
    IMAGE_BITS_8,
    IMAGE_BITS_12,
    IMAGE_BITS_16,
    IMAGE_BITS_24,
    IMAGE_BITS_32,
    IMAGE_BITS_64,
    IMAGE_BITS_R3G3B2,
    IMAGE_BITS_R5G6B5,
    IMAGE_BITS_R5G5B5A1,
    IMAGE_BITS_R10G10B10A2,
    IMAGE_BITS_L6A2,
    IMAGE_BITS_L12A4,
    IMAGE_BITS_D24S8,
    IMAGE_BITS_MAX
};

// What one pixel is made of.
struct image_desc_t {
    e_image_format_t format = IMAGE_FORMAT_GRAYSCALE;
    e_image_type_t type = IMAGE_TYPE_UINT;
    e_image_bits_t bits = IMAGE_BITS_8;

    // Bits of a whole pixel; 0 when format or bits lie outside their enumerations.
    [[nodiscard]] uint32_t getPixelBits() const;

    friend bool operator==(const image_desc_t&, const image_desc_t&) = default;
};

// The enumerator's name, or "unknown: " and the number.
std::ostream& operator<<(std::ostream& out, e_image_format_t format);
std::ostream& operator<<(std::ostream& out, e_image_type_t type);
std::ostream& operator<<(std::ostream& out, e_image_bits_t bits);

}  // namespace libgr
