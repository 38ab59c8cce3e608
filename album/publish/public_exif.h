#pragma once

#include <string>

#include "libutils/bytes/ofsvector.h"

namespace taloram {

// The body of an EXIF segment with nothing but orientation, artist and copyright of the body `exif`; "" when it has
// none of them. Reports what is broken in the first directory.
[[nodiscard]] std::string public_exif(const libutils::bytes_t& exif);

}  // namespace taloram
