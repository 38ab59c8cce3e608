#pragma once

#include <array>
#include <cstdint>
#include <list>

#include "libgr/image/image2d.h"
#include "libgr/jpeg/jpegdata.h"

namespace libgr {

// Whole marker codes (ITU-T T.81 table B.1).
constexpr uint16_t marker_APP1 = 0xFFE1;
constexpr uint16_t marker_COM = 0xFFFE;

// A JPEG file's size and its application and comment segments, and the way between files and images in memory.
class jpeginfo_t {
  public:
    struct marker_t {
        uint8_t marker = 0;      // second byte of the code: 0xE0 to 0xEF for APP0 to APP15, 0xFE for COM
        libutils::bytes_t data;  // the segment after its length bytes, in a buffer of its own
    };

    enum e_marker_num_t : unsigned {
        num_APP0,
        num_APP1,
        num_APP2,
        num_APP3,
        num_APP4,
        num_APP5,
        num_APP6,
        num_APP7,
        num_APP8,
        num_APP9,
        num_APP10,
        num_APP11,
        num_APP12,
        num_APP13,
        num_APP14,
        num_APP15,
        num_COM,
        num_MAX
    };
    struct marker_code_t {
        e_marker_num_t number;
        uint8_t code;
    };
    static const std::array<marker_code_t, num_MAX> marker_array;

    uint64_t width = 0;  // pixels
    uint64_t height = 0;
    std::list<marker_t> markers;  // in file order
    bool damaged = false;         // of the last decoding: something about the compressed data was reported

    // Reads `d` as far as its frame header and fills size and segments. A file that can't be read is reported and gives
    // false; the segments saved up to then stay listed.
    [[nodiscard]] bool analyze_markers(jpegdata_t& d);

    // The data of the first segment of a kind; an empty view when there is none or `n` is over 16.
    [[nodiscard]] libutils::bytes_t get_marker(e_marker_num_t n) const;

    // Decodes `d` into `img` (8-bit RGB or grayscale) and lists its segments, those without contents left out. A
    // picture that is damaged part way is reported and still gives true, with `damaged` set: after a damaged restart
    // interval decoding goes on; where the data is over, the rows not reached keep what the buffer held (0). False when
    // the header can't be read or the file became shorter meanwhile (reported), the colour layout has no image format,
    // or the pixels can't be allocated. `align`, `border` and `color` must be 0, false and black.
    [[nodiscard]] bool decompress(image2d_t& img, jpegdata_t& d, unsigned short align, bool border,
                                  const color3ub_t& color);

    // The same at `eighths` eighths (1 to 8) of the full size, each side rounded up: quicker and smaller. `width` and
    // `height` are those of the full size.
    [[nodiscard]] bool decompress_scaled(image2d_t& img, jpegdata_t& d, unsigned eighths);

    // Encodes `img` with the listed segments; `quality` on libjpeg's scale, cut to 0 to 100. False, without a message,
    // when the layout is none of 8-bit RGB, YCbCr and grayscale, or the picture is empty or over 65500 pixels in a
    // direction; false, and reported, when memory is short.
    [[nodiscard]] bool compress(jpegdata_t& out, const image2d_t& img, int quality, bool force_baseline);
};

}  // namespace libgr
