#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "libgr/jpeg/jpegdata.h"
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

// What the file `path`, which is `data`, shows; nothing when its header can't be read, which is reported.
[[nodiscard]] std::optional<photo_size_t> read_photo_size(const std::string& path, libgr::jpegdata_t& data);

// Index of the smallest of `sizes`, which are sorted and at least one, that has `width` pixels across, but for the odd
// column that halving drops; of the largest when none has.
[[nodiscard]] size_t wanted_size(const std::vector<photo_size_t>& sizes, double width);

// The readable sizes of a photograph, the smallest first, none with a side of more than `longest_side` pixels. Where
// the album has none, its original, else its thumbnail. Empty when nothing can be read.
[[nodiscard]] std::vector<photo_size_t> list_photo_sizes(const std::string& album, const std::string& name,
                                                         uint64_t longest_side);

}  // namespace taloram
