#pragma once

#include <cstdint>
#include <string>

#include "libutils/bytes/ofsvector.h"
#include "libutils/system_error.h"

namespace libutils {

// `contents` = the whole of a regular file of at most `longest` bytes. On failure, short memory included, `contents` is
// left alone. Nothing but a regular file is opened: a pipe would keep the program waiting, and a device has no end.
[[nodiscard]] std::error_code read_file(std::string& contents, const std::string& path, uint64_t longest);

// `bytes` = the whole of a regular file, mapped read-only. No message.
[[nodiscard]] std::error_code map_file(bytes_t& bytes, const std::string& path);

}  // namespace libutils
