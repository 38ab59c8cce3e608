#pragma once

#include <optional>
#include <string>
#include <vector>

namespace talovue {

// What the program ends with.
enum status_t : int {
    status_done = 0,
    status_failed = 1,     // no display
    status_wrong_use = 2,  // one line on standard error
};

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

// Reports wrong use of the program as one line.
void report_wrong_use(const std::string& problem);

}  // namespace talovue
