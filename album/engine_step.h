#pragma once

#include <cstddef>
#include <string>

#include "album/album_layout.h"
#include "libutils/diagnostics.h"

// What the engine's long operations share.
namespace taloram {

// The progress of `count` files after the one with `index`.
inline void emit_progress(progress_t& progress, size_t index, size_t count) {
    progress.emit(static_cast<double>(index + 1) / static_cast<double>(count));
}

// Passes on the result of a step, after a line with its name when it is false.
[[nodiscard]] inline bool step_done(bool result, const char* step) {
    if (!result) {
        libutils::report(step, "() failed.");
    }
    return result;
}

// False, after a report, for an empty path.
[[nodiscard]] inline bool names_an_album(const std::string& album) {
    if (album.empty()) {
        libutils::report(album, ": album directory is empty.");
    }
    return !album.empty();
}

}  // namespace taloram
