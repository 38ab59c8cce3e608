#pragma once

#include <functional>
#include <string>

#include "album/import_file.h"
#include "album/manifest.h"

// Are the originals and movies what was imported?
namespace taloram {

// Brings a copy to the disk, reads it back from there and compares it with its source by SHA-256; `sum` is then the sum
// of both. The album's own file is compared with the sum that `manifest` has of it, if any. No message.
[[nodiscard]] bool verify_copy(std::string& sum, const import_file_t& file, const manifest_t& manifest);

// Brings the names of an import to the disk: the directories of the album, the album and the directory that holds it.
// Reports a failure.
[[nodiscard]] bool flush_album_names(const std::string& album);

// Gets a file of the album, as a path, and what is wrong with it.
using finding_t = std::function<void(const std::string& path, const std::string& what)>;

// Compares the originals and movies of an album with its SHA256SUMS: `found` is called for each that changed or is
// missing, then for each that has no sum. True when there are none; `count` is the number of sums. False, after
// a report, when there are no sums or a directory can't be listed.
[[nodiscard]] bool verify_album(const std::string& album, const finding_t& found, size_t& count);

}  // namespace taloram
