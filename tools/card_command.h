#pragma once

#include "album/card/card_import.h"
#include "tools/command_line.h"

namespace talomake {

// Brings cards into a book and tells, in the last line, whether they may be cleared. Returns the program's exit status.
[[nodiscard]] int run_card(const char* program, const card_command_t& command);

}  // namespace talomake
