#include "talolib/option.h"

namespace talolib {

std::array<int, 8> g_option{};

bool tracing() {
    return g_option[option_trace] != 0;
}

}  // namespace talolib
