#pragma once

#include "album/album_layout.h"

namespace taloram {

// Makes an album of the listed files of `srcdir`: copies them, makes the reduced sizes and thumbnails, writes the
// pages. The steps run in this order, each only if the one before succeeded; each failure leaves a trace of lines on
// standard error from the innermost step to the outermost. What was written so far stays.
[[nodiscard]] bool makealbumwithrotate(const std::string& srcdir, const std::vector<files_t>& files,
                                       const std::string& album, progress_t& copyprogress, progress_t& shrinkprogress,
                                       progress_t& htmlprogress, progress_t& zoomprogress);

// Copies the listed files: photographs into original/, movies into movie/, all others into txt/, which must exist. A
// file takes its final name only when all its bytes were compared with the source. The reduced sizes of a photograph
// that the album already has are removed. Stops at the first failure.
[[nodiscard]] bool copyfiles(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
                             progress_t& progress);

// Makes `to` a hard link of `from`, replacing it. The paths go through a shell unquoted.
[[nodiscard]] bool hardlinkone(const std::string& from, const std::string& to);

// Links original/<name> to size0/<name>.
[[nodiscard]] bool hardlink(const std::string& album, const std::string& name);

}  // namespace taloram
