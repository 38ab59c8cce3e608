#pragma once

#include <string>

#include "libutils/system_error.h"

namespace libutils {

// What happens to a symbolic link under a name that is written to, when it leads neither below the directory `root`
// (an album or book; "" means ".") nor below the directory that really holds the name. Directories that are links do
// not count: users keep originals on other disks.
struct links_t {
    enum class others_t {
        followed,
        refused,   // what the user wrote is not written anywhere else
        replaced,  // what can be made again takes the link's place
    };
    others_t others = others_t::followed;
    std::string root;
};

// `path` = what the symbolic links under its last component lead to, which need not exist; as it is without a link, and
// where the link is to be replaced.
[[nodiscard]] std::error_code follow_link(std::string& path, const links_t& links);

}  // namespace libutils
