#pragma once

#include <ostream>
#include <string>

#include "shooting_data/summary_items.h"

namespace taloram {

// Takes two metering labels from the message catalogue. The arguments are not used.
void initexif(const char* dir, const char* name);

// Writes the shooting data of a photograph as a few tab-separated lines, with "<br>" for a page when `html` is set; no
// line end at the end. Numbers are written in the classic form, but fixed notation and precision stay set on the
// stream. False, with nothing written, when the file or its EXIF data can't be read.
[[nodiscard]] bool write_summary(std::ostream& os, const std::string& path, bool html);

// The same of `dir`/`sub`/`file`; `dir` may be "".
[[nodiscard]] bool writeexif(std::ostream& os, const std::string& dir, const std::string& sub, const std::string& file,
                             bool html);

// The same as lines of words, without tabs; "" without shooting data.
[[nodiscard]] std::string plain_summary(const std::string& path);

}  // namespace taloram
