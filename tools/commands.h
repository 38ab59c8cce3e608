#pragma once

#include "tools/command_line.h"

namespace talomake {

// The catalogue, the looks and the settings file are those of the program with the window.
constexpr const char* program_name = "taloram";

// Runs a command and returns the program's exit status. `program` is the path under which the program was started; the
// catalogue is looked for beside it.
[[nodiscard]] int run_command(const char* program, const command_t& command);

}  // namespace talomake
