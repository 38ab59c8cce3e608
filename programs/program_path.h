#pragma once

#include <string>

namespace programs {

// The path of the running program, whose directory holds what lies beside it: `argv0`. Where that directory does not
// hold the catalogue "<name>.msg" but the executable's own does, as with a link in a directory for programs or a start
// by the bare name, it is the executable's directory with the last component of `argv0`.
[[nodiscard]] std::string program_path(const std::string& argv0, const std::string& name);

}  // namespace programs
