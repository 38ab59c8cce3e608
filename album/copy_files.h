#pragma once

#include <string>
#include <vector>

#include "album/album_layout.h"
#include "album/reduced_sizes.h"

// The first step of an import: the files of the card into the album.
namespace taloram {

// Copies the listed files: photographs into original/, movies into movie/, all others into txt/, which must exist. A
// file takes its final name only when all its bytes were compared with the source; one that the album has with the same
// contents stays and takes the source's date. The reduced sizes of a photograph that the album already has are removed.
// Stops at the first failure.
[[nodiscard]] bool copyfiles(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
                             progress_t& progress);

// The same; a file that can't be copied is handed to `failed`, which returns true to go on with the others.
[[nodiscard]] bool copy_files(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
                              progress_t& progress, const failed_file_t& failed);

// Reports that the file `destination` of the album is not the copy that it should be; returns false.
bool copy_failed(const std::string& destination);

}  // namespace taloram
