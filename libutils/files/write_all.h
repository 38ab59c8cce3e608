#pragma once

#include <string_view>

#include "libutils/system_error.h"

namespace libutils {

// Writes all bytes to a file that is open at its start or end.
[[nodiscard]] std::error_code write_all(int descriptor, std::string_view bytes);

}  // namespace libutils
