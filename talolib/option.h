#pragma once

#include <array>
#include <cstddef>
#include <ostream>

#include "libutils/diagnostics.h"

namespace talolib {

constexpr size_t option_trace = 2;  // entry of the trace flag

// The global option table; every option is off at the start.
extern std::array<int, 8> g_option;

[[nodiscard]] bool tracing();

// Writes one line to `out` when the trace flag is set.
template <typename... Parts>
void trace(std::ostream& out, const Parts&... parts) {
    if (tracing()) {
        out << libutils::join_text(parts...) + '\n' << std::flush;
    }
}

}  // namespace talolib
