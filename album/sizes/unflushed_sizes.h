#pragma once

#include <string>

// Sizes and thumbnails can be made again, so they get their names before they are on the disk: the work would wait for
// it. A power cut may leave names then whose files are short, empty or full of zeros, and an update would take those
// for made. A hidden file of the album, as old as the first size that may not be on the disk, tells of it until
// everything is flushed.
namespace taloram {

// Notes, on the disk, that sizes of the album are going to be made. Where there is no room or right to note it the work
// goes on all the same.
void note_unflushed_sizes(const std::string& album);

[[nodiscard]] bool has_unflushed_sizes(const std::string& album);

// After all is done: flush_album(), and nothing is noted any more. False after a report.
[[nodiscard]] bool flush_sizes(const std::string& album);

// Removes what the power was cut under, where something is noted, so that it is made again. Of a photograph without an
// original everything stays.
void remove_broken_sizes(const std::string& album);

}  // namespace taloram
