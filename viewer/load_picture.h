#pragma once

#include <cstdint>
#include <string>

#include "toolkit/upright_pixels.h"
#include "viewer/picture.h"

namespace talovue {

// A picture to be loaded, and how large.
struct picture_request_t {
    picture_t picture;
    int width = 0;  // of the place to fit the upright picture into, in pixels of the screen
    int height = 0;
    double zoom = 0;  // 0: exactly fitted; else at least this many pixels a pixel of the full size, 1 at the most

    friend bool operator==(const picture_request_t&, const picture_request_t&) = default;
};

struct loaded_picture_t {
    std::string failure;  // the reason, in the locale's encoding; "" when there are pixels
    taloram::plain_pixels_t pixels;
    double width = 0;  // of the full size, upright, in pixels
    double height = 0;
    uint64_t file_bytes = 0;  // of the full size
    bool damaged = false;     // part of the file that was decoded
    std::string summary;      // shooting data as plain lines; "" without any, and unless fitted
};

// Reads a file and decodes it at the smallest scale that is enough: a picture that is fitted is never enlarged, and
// none is decoded to more than the surfaces and the memory of the program have room for. Of an album's photograph it is
// the smallest size that is enough, or another one when that one is broken. Never throws.
[[nodiscard]] loaded_picture_t load_picture(const picture_request_t& request);

}  // namespace talovue
