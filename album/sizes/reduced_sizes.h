#pragma once

#include <functional>

#include "album/album_layout.h"
#include "album/sizes/jpeg_files.h"
#include "libutils/process/goes_on.h"

namespace taloram {

// Level 0 of a photograph is the upright full size, level k is level 0 halved k times; its top level is the first that
// fits into the settings' shrink width and height. `dirs` below are level_directories() of the album.

// The top level of a photograph by the size of its original; 0, after a report, when that can't be read.
[[nodiscard]] unsigned long getshrinklevel(const std::string& album, const std::string& name);

// The same by its pixels.
[[nodiscard]] unsigned long top_level(uint64_t width, uint64_t height);

// True when `source` exists and `target` is missing or older, compared in nanoseconds.
[[nodiscard]] bool need_update(const std::string& source, const std::string& target);

// Gets a file that failed, after its lines; true when the others are to be worked on all the same.
using failed_file_t = std::function<bool(const files_t& file)>;

// Makes all levels and the thumbnail of every listed photograph; other files only count for progress. Ends at the first
// photograph that fails, or where `failed` says so; who says it flushes the sizes (album/sizes/unflushed_sizes.h).
// False, without a line, also when it was not to go on; photographs that were worked on by then are made.
[[nodiscard]] bool shrink(const std::string& album, const std::vector<files_t>& files, progress_t& progress);
[[nodiscard]] bool shrink(const std::string& album, const std::vector<files_t>& files, progress_t& progress,
                          const failed_file_t& failed, const libutils::goes_on_t& asked = {});

// The same, redoing only what is missing, out of date or to be turned. thumb/ must exist.
[[nodiscard]] bool shrinkupdate(const std::vector<files_t>& files, const std::string& album, progress_t& progress);
[[nodiscard]] bool shrinkupdate(const std::vector<files_t>& files, const std::string& album, progress_t& progress,
                                const failed_file_t& failed, const libutils::goes_on_t& asked = {});

// All levels up to `level` and the thumbnail of one photograph. The user's count alone decides whether level 0 is
// turned; when it is, the camera's orientation is added to it. Reduced sizes of a turned photograph carry no segments.
[[nodiscard]] bool shrinkone(const std::vector<std::string>& dirs, const std::string& album, const std::string& name,
                             unsigned long level, unsigned long rightrotatecount);

// The update of one photograph from `startlevel` on. The camera's orientation, where there is one, replaces the user's
// count, and level 0 of a turned photograph is encoded again.
[[nodiscard]] bool shrinkoneupdate(const std::vector<std::string>& dirs, const std::string& album,
                                   const std::string& name, unsigned long level, unsigned long startlevel,
                                   unsigned long rightrotatecount);

}  // namespace taloram
