#pragma once

#include <string_view>

namespace libutils {

// Writes all bytes to a file that is open at its start or end. False when not all could be written; errno tells why.
[[nodiscard]] bool write_all(int descriptor, std::string_view bytes);

}  // namespace libutils
