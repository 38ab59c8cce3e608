#pragma once

#include <string>

// Only "/" separates here, as it does for the kernel: a path from the command line must open the file it names, even
// when that name holds a "\".
namespace talomake {

// The last component.
[[nodiscard]] std::string last_component(const std::string& path);

// Everything before the last component without the "/" between them: "" for a file of the root directory, "." when the
// path is a bare name.
[[nodiscard]] std::string directory_of_file(const std::string& path);

// The directory that holds the directory `path` (without trailing "/"): "" for the current one.
[[nodiscard]] std::string parent_directory(const std::string& path);

// The name that the directory `path` has in its parent, also where the path ends with "." or "..".
[[nodiscard]] std::string directory_name(const std::string& path);

}  // namespace talomake
