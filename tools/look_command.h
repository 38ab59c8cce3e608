#pragma once

#include "tools/command_line.h"

namespace talomake {

// Lists the looks, prints the line of one, or writes it into the settings file. Returns the program's exit status.
[[nodiscard]] int run_look(const char* program, const look_command_t& command);

}  // namespace talomake
