#pragma once

#include <optional>
#include <string>
#include <vector>

namespace talovue {

struct command_line_t {
    std::vector<std::string> paths;
    std::optional<double> slide_seconds;  // a slide show from the start, with this time for each picture
    bool full_screen = false;
};

constexpr double shortest_slide = 0.1;  // seconds
constexpr double longest_slide = 86400;

// Nothing when the program has to end with `status`: help and version were written to standard output, wrong use as one
// line to standard error.
[[nodiscard]] std::optional<command_line_t> parse_command_line(int argc, const char* const* argv, int& status);

}  // namespace talovue
