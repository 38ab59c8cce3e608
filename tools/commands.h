#pragma once

#include "tools/command_line.h"

namespace talomake {

// Runs a command and returns the program's exit status. `program` is the path under which the program was started; the
// catalogue is looked for beside it.
[[nodiscard]] int run_command(const char* program, const command_t& command);

}  // namespace talomake
