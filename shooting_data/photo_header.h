#pragma once

#include <list>
#include <optional>
#include <string>

#include "libgr/jpeg/jpeginfo.h"
#include "shooting_data/orientation.h"

namespace taloram {

// What a photograph says about itself before its pixels. It shares nothing with the file, which may be replaced
// meanwhile.
struct photo_header_t {
    uint64_t width = 0;  // pixels, as they lie in the file
    uint64_t height = 0;
    std::list<libgr::jpeginfo_t::marker_t> segments;  // in file order

    // Of the EXIF data. The orientation stands in its first directory and is known even when a later part is broken.
    std::optional<uint16_t> orientation_value;  // as it stands, whether EXIF knows it or not
    libutils::bytes_t thumbnail;                // JPEG; empty without one that decodes whole

    // Body of the first APP1 segment; an empty view without one.
    [[nodiscard]] libutils::bytes_t app1() const;
    [[nodiscard]] orientation_t orientation() const { return to_orientation(orientation_value.value_or(1)); }
};

// Size and segments of the file `path`, or of one that was loaded. A header that is refused is reported, a file that
// can't be loaded is not. Whoever wants EXIF fields calls read_exif() then.
[[nodiscard]] bool load_photo_header(photo_header_t& header, const std::string& path);
[[nodiscard]] bool read_photo_header(photo_header_t& header, libgr::jpegdata_t& data);

// Fills the EXIF fields from the segments; what is damaged there is reported and left out.
void read_exif(photo_header_t& header);

}  // namespace taloram
