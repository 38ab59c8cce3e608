#pragma once

#include <cstddef>
#include <list>
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

// Lists the files of a directory that may be missing. False, after a report, when it is there and can't be listed
// whole.
[[nodiscard]] bool list_if_there(std::list<std::string>& files, const std::string& directory);

// Names a directory that is closed to the user, which is no failure.
inline void report_closed(const std::string& directory, const std::error_code& reason) {
    libutils::report(directory, ": passed over, ", reason.message());
}

// False, after a report, for an empty path.
[[nodiscard]] inline bool names_an_album(const std::string& album) {
    if (album.empty()) {
        libutils::report(album, ": album directory is empty.");
    }
    return !album.empty();
}

}  // namespace taloram
