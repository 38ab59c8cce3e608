#pragma once

#include "libgr/jpeg/libjpeg_bridge.h"

namespace libgr {

// How a picture is encoded: the same whether whole or row by row, so that both give the same bytes.
struct encoding_t {
    JDIMENSION width;  // pixels
    JDIMENSION height;
    J_COLOR_SPACE color_space;  // of the rows that are handed over
    int components;
    int quality;  // libjpeg's scale, cut to 0 to 100
    bool force_baseline;
};

// Sets up a compressor that was created; inside an attempt.
void set_up_encoder(jpeg_compress_struct& info, const encoding_t& encoding);

}  // namespace libgr
