#pragma once

#include <string>

// Paths as the kernel takes them apart: only "/" separates, and "\" belongs to a name. For every path that is opened
// here; the functions of libutils/files/path.h know the separators of other systems too.
namespace libutils {

// The last component: "" after a trailing "/".
[[nodiscard]] std::string last_component(const std::string& path);

// Everything up to and including the last "/", "" without one: what a name can be appended to.
[[nodiscard]] std::string directory_part(const std::string& path);

// Everything before the last component without the "/" between them: "" for a file of the root directory, "." when the
// path is a bare name.
[[nodiscard]] std::string directory_of_file(const std::string& path);

// The directory that holds the directory `path` (without trailing "/"): "" for the current one.
[[nodiscard]] std::string parent_directory(const std::string& path);

// The name that the directory `path` has in its parent, also where the path ends with "." or "..".
[[nodiscard]] std::string directory_name(const std::string& path);

// Where a directory really lies, with "/" after it, so that one begins with another when it lies in it; "" when that
// can't be told.
[[nodiscard]] std::string real_directory(const std::string& path);

}  // namespace libutils
