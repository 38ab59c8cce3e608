#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace talovue {

struct picture_list_t {
    std::vector<std::string> paths;
    size_t first = 0;  // index of the one to begin with
};

// What directories and files name together: of a directory its JPEG files (".jpg" or ".jpeg" in any case) that are not
// hidden, in byte order of their names. One file alone stands for its directory from that file on. False, with the
// reason in `problem` and `list` unchanged, when one of them does not exist or can't be read.
[[nodiscard]] bool list_pictures(picture_list_t& list, const std::vector<std::string>& arguments, std::string& problem);

}  // namespace talovue
