#pragma once

#include <string>

#include "libutils/system_error.h"

// What was written is in the system's memory first. Until it was flushed a power cut may leave a file short, empty or
// full of zeros, and names as they were.
namespace libutils {

// Waits until a file's bytes, or the names in a directory, are on the disk. No failure for a directory of a file system
// that has nothing to flush there.
[[nodiscard]] std::error_code flush(const std::string& path);

// The same for a file that is open.
[[nodiscard]] std::error_code flush(int descriptor);

// Has the disk begin with an open file's bytes and doesn't wait, so that less is left when somebody does.
void begin_flush(int descriptor);

// Waits until everything on the file system that holds `path` is on the disk, whoever wrote it.
[[nodiscard]] std::error_code flush_file_system(const std::string& path);

}  // namespace libutils
