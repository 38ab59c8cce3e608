#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "viewer/picture.h"

namespace talovue {

struct picture_list_t {
    std::vector<picture_t> pictures;
    size_t first = 0;  // index of the one to begin with
};

// What directories and files name together: of a directory its JPEG files (".jpg" or ".jpeg" in any case) that are not
// hidden, in byte order of their names; but of an album's numbered size all photographs of the album, whichever sizes
// they have, and so of the album's own directory when no JPEG file lies in it. One file alone stands for the files of
// its directory from that file on. False, with the reason in `problem` and `list` unchanged, when one of them does not
// exist or can't be read.
[[nodiscard]] bool list_pictures(picture_list_t& list, const std::vector<std::string>& arguments, std::string& problem);

}  // namespace talovue
