#pragma once

#include <iostream>
#include <locale>
#include <sstream>
#include <string>

namespace libutils {

// Does nothing: a breakpoint here stops before any diagnostic of the program is written.
inline void error() {
}

// The parts as one text, numbers in the classic form whatever the process's C++ locale is.
template <typename... Parts>
[[nodiscard]] std::string join_text(const Parts&... parts) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    (text << ... << parts);
    return text.str();
}

// Writes one diagnostic line to standard error after calling error(). The whole line reaches the stream in one
// piece, so that a progress display behind the stream never splits it.
template <typename... Parts>
void report(const Parts&... parts) {
    error();
    std::cerr << join_text(parts...) + '\n' << std::flush;
}

}  // namespace libutils
