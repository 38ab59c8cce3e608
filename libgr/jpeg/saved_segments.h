#pragma once

#include <list>

#include "libgr/jpeg/jpeginfo.h"
#include "libgr/jpeg/libjpeg_bridge.h"

namespace libgr {

// Whether a decoded photograph's copies get a segment that libjpeg saved: it is whole and has contents.
[[nodiscard]] inline bool is_carried_over(const jpeg_marker_struct& saved) {
    return saved.data_length != 0 && saved.data_length == saved.original_length;
}

// Appends a copy of a segment that libjpeg saved. False when memory is short.
[[nodiscard]] bool append_segment(std::list<jpeginfo_t::marker_t>& markers, const jpeg_marker_struct& saved);

}  // namespace libgr
