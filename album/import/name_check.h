#pragma once

#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "album/album_layout.h"

// What the names of an import's files mean for the album, looked at before anything is written.
namespace taloram {

// Two names, as paths in the album, that its disk takes for one file.
using clash_t = std::pair<std::string, std::string>;

// Which names differ in nothing but small and capital letters where the album's disk does not tell these apart (FAT,
// exFAT and others): of listed files with each other, with files that the album has, and with the texts that the
// program writes itself. Found out on the disk, by a hidden file that is removed at once. An error is that of a
// directory of the album that can't be listed.
[[nodiscard]] std::error_code find_clashes(std::vector<clash_t>& clashes, const std::vector<files_t>& files,
                                           const std::string& album);

// A name that is the same for all names that differ in nothing but small and capital letters.
[[nodiscard]] std::wstring folded_name(const std::string& name);

// A line for each listed photograph or movie whose links can't work because of a character in its name, and for each
// listed photograph that shares its zoom pages with another one of the album. An album name with such a character has
// a line too. No failures: pages write names as they are.
void warn_of_names(const std::vector<files_t>& files, const std::string& album);

}  // namespace taloram
