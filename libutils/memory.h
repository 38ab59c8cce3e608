#pragma once

#include <cstdint>

namespace libutils {

// Bytes that the machine can hand out before it runs short, the swap included. The system promises more than it has and
// ends programs that take it at its word. The largest number when the system does not tell.
[[nodiscard]] uint64_t available_memory();

}  // namespace libutils
