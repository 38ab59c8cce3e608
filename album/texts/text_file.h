#pragma once

#include <list>
#include <string>

#include "libutils/system_error.h"

namespace taloram {

// Reads the whole of a text; `text` is left alone when that fails. A text that is there and can't be read, for want of
// memory too, is another thing than none: libutils::is_absent() tells. No message.
[[nodiscard]] std::error_code load_text(std::string& text, const std::string& path);

// Split at LF; the line ends' CR stays. No last line after a trailing LF.
[[nodiscard]] std::list<std::string> split_lines(const std::string& text);

}  // namespace taloram
