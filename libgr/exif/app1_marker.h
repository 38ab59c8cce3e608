#pragma once

#include "libgr/exif/tiff_header.h"

namespace libgr {

// The body of an APP1 segment that holds EXIF data.
class app1_marker_t : public libutils::bytes_t {
  public:
    using tiff_header_t = libgr::tiff_header_t;

    tiff_header_t tiff_header;

    void set_app1_buffer(const libutils::bytes_t& app1);

    // True when the view begins with the NUL-terminated text "Exif".
    [[nodiscard]] bool is_exif() const;

    // Reads the TIFF structure; false without a message when the segment is no EXIF data.
    [[nodiscard]] bool parse();

    void clear() override;
};

}  // namespace libgr
