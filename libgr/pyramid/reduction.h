#pragma once

#include <vector>

#include "libgr/jpeg/jpegdata.h"

namespace libgr {

// The reduced sizes of a photograph, each as a JPEG file.
struct reduction_t {
    struct level_t {
        bool wanted = false;
        bool with_segments = false;  // carries the photograph's application and comment segments
        jpegdata_t stream;           // filled when wanted
    };

    int quality = 100;            // libjpeg's scale, cut to 0 to 100
    std::vector<level_t> levels;  // levels[k - 1] is level k: the photograph halved k times
    bool by_libjpeg = false;      // filled: it had to decode the photograph
};

// Makes the wanted levels of `source` in one pass over its rows: never is a whole picture in memory, except for the
// coefficients of a file in several scans. Every byte is the one that jpeginfo_t::decompress(), scaledown() once per
// level and jpeginfo_t::compress() make.
//
// False, without a message, for whatever is not a plain good case: a file that libjpeg has anything to say about,
// another layout than RGB or grayscale, a wanted level without pixels, no wanted level, memory that is short. What is
// wrong will then be found, and told, by those three functions; the streams are of no use.
[[nodiscard]] bool reduce(reduction_t& reduction, const jpegdata_t& source);

// One of the two ways of reduce(): with coding of our own, where libjpeg reads the header and decodes only what is no
// baseline file of a camera's layout, or with libjpeg alone. The first leaves more to the second: whatever is not well
// formed. reduce() tries one after the other; with libjpeg in the environment variable TALORAM_CODING, the second
// alone.
enum class coding_t { own, libjpeg };
[[nodiscard]] bool reduce(reduction_t& reduction, const jpegdata_t& source, coding_t coding);

}  // namespace libgr
