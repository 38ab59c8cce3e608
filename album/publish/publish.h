#pragma once

#include <cstddef>
#include <string>

#include "album/album_layout.h"

namespace taloram {

// A copy of an album, or of a book with all albums below it, for readers.
struct publish_order_t {
    std::string source;
    std::string directory;   // of the copy; made when missing
    bool keep_data = false;  // photographs with all they tell, as files
    bool prune = false;      // remove what was published before and is no longer to be
};

struct published_t {
    bool is_complete = false;  // all is there, and every link leads to something
    size_t outdated = 0;       // files that were published before, are no longer to be, and stay
};

// What is wrong with the directory of an order, as the end of a line that begins with it; "" when it is fit. It must be
// empty or a published copy, and neither lie in an album, nor in the source or around it.
[[nodiscard]] std::string unfit_copy(const publish_order_t& order);

// Publishes the pages of the source, index.html and list.html, and what their links lead to in it, page by page, but
// nothing of original/, txt/ or SHA256SUMS; pages after all other files. Of photographs that go to the copy
// public_photo_t tells what remains. The source is only read, under the locks of its writers; a file of the copy that
// is as it should be stays.
//
// Reports what can't be read or written, links that lead to nothing, movies that name a place, and texts with active
// markup. What can't be read is left out; after a write that fails nothing more is written.
[[nodiscard]] published_t publish(const publish_order_t& order, progress_t& progress);

}  // namespace taloram
