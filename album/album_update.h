#pragma once

#include <optional>
#include <string>
#include <vector>

#include "album/album_layout.h"
#include "album/orphans.h"
#include "album/progress.h"

namespace taloram {

struct update_options_t {
    orphans_t orphans = orphans_t::keep;
};

// What an update failed at first.
struct update_failure_t {
    std::string file;      // path of the original, "" when it was no photograph's fault
    std::string reason;    // the innermost line that was reported about it
    bool stopped = false;  // by the caller; a reason then tells what failed before or behind it

    [[nodiscard]] bool is_only_stopped() const { return stopped && reason.empty(); }
};

// Nothing when all was done.
using update_result_t = std::optional<update_failure_t>;

// Brings an existing album up to date while no other program writes to it: the reduced sizes of the listed photographs,
// then the pages. `copyprogress` is never emitted.
[[nodiscard]] bool updatealbum(const std::vector<files_t>& files, const std::string& album, progress_t& copyprogress,
                               progress_t& shrinkprogress, progress_t& htmlprogress, progress_t& zoomprogress);

// The same. Stopped by the caller, the photographs that were worked on have all their sizes, and the pages are written.
[[nodiscard]] update_result_t update_album(const std::vector<files_t>& files, const std::string& album,
                                           progress_signals_t& progress);

// Brings an album up to date with all its originals unturned, or every album below a book, to any depth, and the books'
// index pages. A directory below the named one counts as a book when it has txt/ or an album below it. A failure does
// not keep the other albums from being updated; the result is true when nothing failed.
[[nodiscard]] bool batchupdate(const std::string& path, progress_t& copyprogress, progress_t& shrinkprogress,
                               progress_t& htmlprogress, progress_t& zoomprogress);

// The same; after a stop the books above the albums that were worked on still get their pages. What is left of
// photographs whose original is gone is treated before an album's pages are written.
[[nodiscard]] update_result_t update_all(const std::string& path, const update_options_t& options,
                                         progress_signals_t& progress);

}  // namespace taloram
