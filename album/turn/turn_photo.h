#pragma once

#include <string>
#include <vector>

#include "album/progress.h"

namespace taloram {

enum class turned_t {
    all,
    none,         // nothing was turned, or what a message says is left for the next program to put in place
    pages_stale,  // all, but the pages could not be written
    stopped,      // by the caller before anything got its name: nothing was turned
};

// Turns what is shown of photographs clockwise by `count` quarter turns (1 to 3), for good and without loss: all their
// sizes and thumbnails, and then the pages that tell of them. The originals stay.
//
// A size that carries an EXIF Orientation is turned from what a browser shows of it, and carries none afterwards. A
// thumbnail that does not decode whole is made anew.
//
// All or nothing: where a size is missing, can't be read or carries an Orientation that mirrors, or the disk is full,
// nothing is turned. What a killed program had begun is ended first, and photographs that it had turned by the same
// count are not turned again. A stop is obeyed until all turned files are made; then it is too late. Failures are
// reported. Of the stages there are sizes, pages and zoom pages.
[[nodiscard]] turned_t turn_photos(const std::string& album, const std::vector<std::string>& names, unsigned long count,
                                   progress_signals_t& progress);

// Ends what killed programs had begun to turn, and writes the pages when there was something. False, after a report,
// when that failed.
[[nodiscard]] bool end_begun_turns(const std::string& album);

// Turns every reduced size and the thumbnail of one photograph in place; the original stays. At a failure the sizes
// before it stay turned.
[[nodiscard]] bool rotateallsize(const std::string& album, const std::string& name, unsigned long count);

}  // namespace taloram
