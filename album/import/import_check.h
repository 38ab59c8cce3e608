#pragma once

#include <string>
#include <vector>

#include "album/album_layout.h"
#include "libutils/process/goes_on.h"

// What is looked at before an import writes anything. The result of what was not to go on means nothing.
namespace taloram {

// The files that the album has under the names of listed ones with other contents, as paths. count.txt, which the
// program writes itself, is none of them, nor is a file of the album that is imported into the album again.
[[nodiscard]] std::vector<std::string> find_conflicts(const std::string& srcdir, const std::vector<files_t>& files,
                                                      const std::string& album, const libutils::goes_on_t& asked = {});

// How much more room the album's file system needs for an import, as a text like "1.5 GiB"; "" when it has enough, as
// has_room() tells.
[[nodiscard]] std::string missing_room(const std::string& srcdir, const std::vector<files_t>& files,
                                       const std::string& album, const libutils::goes_on_t& asked = {});

// False, after a report of how much is missing, when the album's file system has less free than the import is going to
// take: the files that the album does not have yet, and an estimate of their reduced sizes. True where the system does
// not tell.
[[nodiscard]] bool has_room(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album);

}  // namespace taloram
