#pragma once

#include <functional>
#include <string>
#include <vector>

namespace taloram {

// Gets a listed file that an album seems to have, as its place in the list, and the album's path.
using held_file_t = std::function<void(size_t index, const std::string& album)>;

// Looks for files of `srcdir` that albums of a book seem to have already, under whatever name: a file of the same
// length whose first and last blocks are equal, of which the first one holds the date of a photograph. Files that
// differ in between alone count as the same, so that this is good for offering what is new, and no reason to remove
// anything. `found` is called in the order of the list, once for a file, with the first of the albums.
//
// False, after a report, when a directory of the book can't be listed; what the others have is found all the same.
[[nodiscard]] bool find_held_files(const std::string& srcdir, const std::vector<std::string>& names,
                                   const std::string& book, const held_file_t& found);

}  // namespace taloram
