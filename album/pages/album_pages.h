#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "album/progress.h"

namespace taloram {

// Writes an album's index.html, list.html and txt/count.txt from what is on disk. A photograph is a file in thumb/.
[[nodiscard]] bool makehtml(const std::string& album, progress_t& progress);

// Writes the zoom pages, html/<base>_<k>.html for every level k over 0 of every photograph.
[[nodiscard]] bool makehtmlzoom(const std::string& album, progress_t& progress);

// Both, one after the other, each failure traced. It holds where the caller wants that, and is not to be stopped.
[[nodiscard]] bool write_pages(const std::string& album, progress_signals_t& progress);

// Writes the links to the sizes of photograph `f` that are larger than its top level. `sd` are the names of its size
// directories, `zp` of its zoom pages. False when a size can't be read.
[[nodiscard]] bool writelink(std::ostream& out, const std::string& album, const std::vector<std::string>& sd,
                             const std::vector<std::string>& zp, const std::string& f);

}  // namespace taloram
