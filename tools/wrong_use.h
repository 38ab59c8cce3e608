#pragma once

#include "programs/program.h"

namespace talomake {

// Reports wrong use of the program; false, for the caller to return.
template <typename... Parts>
[[nodiscard]] bool wrong_use(const Parts&... parts) {
    programs::report_wrong_use("talomake", parts...);
    return false;
}

}  // namespace talomake
