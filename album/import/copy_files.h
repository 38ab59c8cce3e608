#pragma once

#include <functional>
#include <string>
#include <system_error>
#include <vector>

#include "album/album_layout.h"

// The first step of an import: the files of the card into the album.
namespace taloram {

// Copies the listed files: photographs into original/, movies into movie/, all others into txt/, which must exist. A
// file takes its final name only when all its bytes were written and compared with the source; one that the album has
// with the same contents stays and takes the source's date, but one that has another date and another name is replaced:
// that name may belong to a backup. The reduced sizes of a photograph that the album already has go with the old copy;
// where it stays because the new one failed, so do they. A photograph whose zoom pages would have longer names than the
// file system allows fails before it is copied. Stops at the first failure.
[[nodiscard]] bool copyfiles(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
                             progress_t& progress);

// Gets a file that was not copied, after its line, and why; true when the others are to be copied all the same.
using failed_copy_t = std::function<bool(const files_t& file, const std::error_code& reason)>;

[[nodiscard]] bool copy_files(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
                              progress_t& progress, const failed_copy_t& failed);

// Reports that the file `destination` of the album is not the copy that it should be; returns false.
bool copy_failed(const std::string& destination);

}  // namespace taloram
