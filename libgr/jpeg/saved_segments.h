#pragma once

#include <list>

#include "libgr/jpeg/jpeginfo.h"
#include "libgr/jpeg/libjpeg_bridge.h"

namespace libgr {

// Appends a copy of a segment that libjpeg saved. False when memory is short.
[[nodiscard]] bool append_segment(std::list<jpeginfo_t::marker_t>& markers, const jpeg_marker_struct& saved);

}  // namespace libgr
