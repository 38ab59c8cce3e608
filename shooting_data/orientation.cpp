#include "shooting_data/orientation.h"

namespace taloram {

unsigned long picture_orientation(const libgr::tiff_header_t& tiff) {
    const auto& orientation = tiff.tag_0th_ifd.orientation;
    const bool known = !orientation.empty() && orientation.front() >= 1 && orientation.front() <= 8;
    return known ? orientation.front() : 1;
}

}  // namespace taloram
