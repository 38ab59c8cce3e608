#pragma once

#include <string>
#include <vector>

namespace libutils {

// What programs do with their command line and their streams.

// A standard stream that the caller closed would lend its number to the next file that is opened, and messages would
// then be written into a page or a photograph. Takes such numbers, read-only, so that writing still fails.
void hold_standard_descriptors();

// The arguments behind the program's name for CLI11's parser, last one first as it wants them. It takes values in
// brackets for lists and "++" for the end of a subcommand, but here they name files: such ones are guarded.
[[nodiscard]] std::vector<std::string> guarded_arguments(int argc, const char* const* argv);

// What the parser hands out, as it was typed.
[[nodiscard]] std::string plain(std::string argument);
[[nodiscard]] std::vector<std::string> plain(std::vector<std::string> arguments);

// `text` with a "?" for every control character, so that it stays one line whatever a file is named.
[[nodiscard]] std::string one_line(std::string text);

}  // namespace libutils
