#pragma once

#include <list>
#include <string>

#include "libutils/system_error.h"

namespace libutils {

// The names in `dir` ("" means "."), sorted by byte value, hidden ones included: list_files() gives everything that is
// not a directory, symbolic links to directories included; list_directories() the subdirectories without "." and "..".
// Block devices and sockets share the directory type's bit and count as directories. What this program has not finished
// writing (libutils/files/new_file.h) is left out.
//
// A listing is whole or it failed, also when the directory can't be read to its end: `out` is empty then.
[[nodiscard]] std::error_code list_files(std::list<std::string>& out, const std::string& dir);
[[nodiscard]] std::error_code list_directories(std::list<std::string>& out, const std::string& dir);

// The same for callers that need no reason. No message.
[[nodiscard]] bool getfiles(std::list<std::string>& out, const char* dir);
[[nodiscard]] bool getdirs(std::list<std::string>& out, const char* dir);

// Names of files that are not finished yet, or only there to try something: this, the number of the process, "-", and a
// count or a name.
constexpr const char* temporary_prefix = ".taloram-new-";
[[nodiscard]] bool is_temporary(const std::string& name);

// The temporaries in `dir`, as list_files() does the others.
[[nodiscard]] std::error_code list_temporaries(std::list<std::string>& out, const std::string& dir);

// Creates one directory with mode 0755; true when there is a directory afterwards.
bool mkdir(const char* path);

}  // namespace libutils
