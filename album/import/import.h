#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "album/album_layout.h"
#include "album/import/copy_files.h"
#include "album/progress.h"

namespace taloram {

// Makes an album of the listed files of `srcdir`: copies them, makes the reduced sizes and thumbnails, writes the
// pages. The steps run in this order, each only if the one before succeeded; each failure leaves a trace of lines on
// standard error from the innermost step to the outermost. What was written so far stays.
[[nodiscard]] bool makealbumwithrotate(const std::string& srcdir, const std::vector<files_t>& files,
                                       const std::string& album, progress_t& copyprogress, progress_t& shrinkprogress,
                                       progress_t& htmlprogress, progress_t& zoomprogress);

struct left_out_t {
    std::string name;
    std::string reason;  // as in import_result_t
};

struct import_options_t {
    // Each copy is brought to the disk, read back from there and compared with its source; the album gets SHA256SUMS.
    bool verify = false;
    // A file that fails is left out of the album and the others are finished.
    bool keep_going = false;
    // Asked about each file that fails, where it is not left out anyway: true leaves it out as keep_going does, and the
    // import goes on from there; false ends it. Empty: false.
    std::function<bool(const left_out_t& file)> leaves_out = nullptr;
};

struct import_result_t {
    std::optional<stage_t> failed;  // the stage that ended the import, those before it are done; empty: all are
    std::string file;               // at which it failed, "" when it was no file's fault
    std::string reason;             // the innermost line that was reported about it
    std::vector<left_out_t> left_out;
    bool stopped = false;  // in that stage, by the caller; a reason then tells why the pages could not be written

    [[nodiscard]] bool is_done() const { return !failed; }
};

// The same with options, while no other program writes to the album. The steps are traced as above, that of the
// comparison by "verify() failed.". An album that has SHA256SUMS keeps it, whether the import verifies or not.
//
// With keep_going the files that failed are left out, and the import is done when nothing else failed: of a photograph
// that was left out the album has no original, no size, no thumbnail and no zoom page. But what can't be copied
// replaces nothing and leaves an older file with its sizes as it was; and an original stays that is the album's own or
// whose source can't be read any more, because it may be the only copy.
//
// Stopped by the caller the album has whole copies, and pages of the photographs that have all their sizes. A file that
// was not compared yet has no sum, and one that was replaced has no longer that of the old one. The same import
// completes the album; an update makes the sizes of what was copied.
[[nodiscard]] import_result_t import_album(const std::string& srcdir, const std::vector<files_t>& files,
                                           const std::string& album, const import_options_t& options,
                                           progress_signals_t& progress);

// Makes `to` a hard link of `from`, replacing it. The paths go through a shell unquoted.
[[nodiscard]] bool hardlinkone(const std::string& from, const std::string& to);

// Links original/<name> to size0/<name>.
[[nodiscard]] bool hardlink(const std::string& album, const std::string& name);

}  // namespace taloram
