#pragma once

#include <cstdint>

namespace libutils {

// Bytes that the machine can hand out before it runs short, the swap included. The system promises more than it has and
// ends programs that take it at its word. The largest number when the system does not tell.
[[nodiscard]] uint64_t available_memory();

// Lets the process keep what it frees, up to some 256 MiB, for the next photograph: the coefficients of a picture that
// is turned are large, and fresh pages cost more than half as much as the turn itself. For programs that work and end.
void keep_freed_memory();

}  // namespace libutils
