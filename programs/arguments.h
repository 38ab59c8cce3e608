#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace programs {

// Parses the command line, in `app`'s name. False when the program has to end with `status`: help and version were
// written to standard output, wrong use as one line to standard error, where an argument that nothing takes is named
// before `unknown`.
//
// CLI11 takes values in brackets for lists and "++" for the end of a subcommand, but here they name files. Such values
// are marked before it sees them: every value that it hands out has to go through plain().
[[nodiscard]] bool parse_arguments(CLI::App& app, int argc, const char* const* argv, const char* unknown, int& status);

// What the parser handed out, as it was typed.
[[nodiscard]] std::string plain(std::string argument);
[[nodiscard]] std::vector<std::string> plain(std::vector<std::string> arguments);

}  // namespace programs
