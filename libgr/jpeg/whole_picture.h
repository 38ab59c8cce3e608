#pragma once

#include "libgr/jpeg/jpegdata.h"

namespace libgr {

// True when every row of a JPEG file can be decoded and libjpeg has nothing to say about its compressed data. What only
// its header is warned of, or what follows the last row, costs no pixel and does not count. No message.
[[nodiscard]] bool is_whole_picture(const jpegdata_t& data);

}  // namespace libgr
