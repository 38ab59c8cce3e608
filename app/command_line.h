#pragma once

#include <string>

namespace taloram {

// "[-h] [<from dir> <to dir>]", the program's own arguments, without those of the toolkit. What a desktop passes for a
// card that was plugged in is none of the user's: "--card", with where the card is mounted or, when that is nowhere,
// without.
struct command_line_t {
    bool wants_usage = false;  // asked for by "-h" or deserved by a wrong number of arguments
    bool has_paths = false;
    std::string from;
    std::string album;
    std::string card;  // "" without one
};

[[nodiscard]] command_line_t parse_command_line(int argc, const char* const* argv);

// Writes the usage line to standard output.
void usage(const char* argv0);

}  // namespace taloram
