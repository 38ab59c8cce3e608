#pragma once

#include <functional>
#include <string>
#include <system_error>
#include <vector>

#include "album/album_layout.h"
#include "libutils/process/goes_on.h"

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

// Who follows the copies one by one.
struct copy_watch_t {
    // Gets a file that was not copied, after its line, and why; true when the others are to be copied all the same.
    std::function<bool(const files_t& file, const std::error_code& reason)> failed;

    // Gets a file that was copied, not one that the album had already.
    std::function<void(const files_t& file)> copied;

    libutils::goes_on_t goes_on;
};

// The same; false, without a line about it, also when it was not to go on.
[[nodiscard]] bool copy_files(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
                              progress_t& progress, const copy_watch_t& watch);

// Reports that the file `destination` of the album is not the copy that it should be; returns false.
bool copy_failed(const std::string& destination);

}  // namespace taloram
