#pragma once

#include "libutils/diagnostics.h"
#include "libutils/program.h"

namespace talomake {

// What the program ends with.
enum status_t : int {
    status_done = 0,
    status_failed = 1,     // something failed; the trace of lines is on standard error
    status_wrong_use = 2,  // one line on standard error, nothing touched
};

// Reports wrong use of the program; false, for the caller to return.
template <typename... Parts>
[[nodiscard]] bool wrong_use(const Parts&... parts) {
    libutils::report("talomake: ", libutils::one_line(libutils::join_text(parts...)));
    return false;
}

}  // namespace talomake
