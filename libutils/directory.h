#pragma once

#include <list>
#include <string>

namespace libutils {

// The names in `dir` ("" means "."), sorted by byte value, hidden ones included. getfiles() gives everything that is
// not a directory, symbolic links to directories included; getdirs() the subdirectories without "." and "..". Block
// devices and sockets share the directory type's bit and count as directories. False, without a message and with
// an empty list, when the directory can't be opened.
[[nodiscard]] bool getfiles(std::list<std::string>& out, const char* dir);
[[nodiscard]] bool getdirs(std::list<std::string>& out, const char* dir);

// Creates one directory with mode 0755; true when there is a directory afterwards.
bool mkdir(const char* path);

}  // namespace libutils
