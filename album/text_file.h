#pragma once

#include <list>
#include <string>

namespace taloram {

// Reads the whole of a regular file; `text` is left alone when it can't be read. No message.
[[nodiscard]] bool load_text(std::string& text, const std::string& path);

// Split at LF; the line ends' CR stays. No last line behind a trailing LF.
[[nodiscard]] std::list<std::string> split_lines(const std::string& text);

}  // namespace taloram
