#pragma once

#include <cairomm/surface.h>

#include <cstdint>
#include <string>
#include <vector>

#include "shooting_data/orientation.h"

namespace taloram {

// The files that show one photograph of an album, each as a browser shows it: upright where it carries an EXIF
// Orientation.

// One size of a photograph.
struct photo_size_t {
    std::string path;
    uint64_t width = 0;  // pixels, as shown
    uint64_t height = 0;
    orientation_t orientation = orientation_t::top_left;  // of this very file
};

// The readable sizes of a photograph, the smallest first. Where the album has none, its original, else its thumbnail.
// Empty when nothing can be read.
[[nodiscard]] std::vector<photo_size_t> list_photo_sizes(const std::string& album, const std::string& name);

// Decodes one size, right way up. A null pointer when that fails, which is reported where it is no lack of memory.
[[nodiscard]] Cairo::RefPtr<Cairo::ImageSurface> load_upright(const photo_size_t& size);

// Turns what is shown of a photograph clockwise by `count` quarter turns (1 to 3), for good and without loss: all sizes
// and the thumbnail; the original stays. False, and nothing turned, when one of them is missing, can't be read or
// carries an Orientation that mirrors; a file that can't be written leaves those before it turned. Failures are
// reported.
[[nodiscard]] bool turn_photo(const std::string& album, const std::string& name, unsigned long count);

}  // namespace taloram
