#pragma once

#include <string>

#include "libutils/process/goes_on.h"

namespace taloram {

// A file on its way into an album.
struct import_file_t {
    std::string source;
    std::string destination;
    std::string path_in_album;  // of the destination
    bool in_place = false;      // the source is the album's own file, the only copy there is: it stays where it is
};

// Where `name` of the directory `srcdir` goes in `album`.
[[nodiscard]] import_file_t locate_import(const std::string& srcdir, const std::string& name, const std::string& album);

// True when the album has the file with the source's contents as a file of its own, no link to the source.
// False also when it was not to go on.
[[nodiscard]] bool has_same_copy(const import_file_t& file, const libutils::goes_on_t& asked = {});

}  // namespace taloram
