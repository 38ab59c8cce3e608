#pragma once

#include <optional>
#include <string>
#include <vector>

#include "album/import/import.h"
#include "album/import/name_check.h"
#include "album/progress.h"

namespace taloram {

// What an import may take the place of.
enum class replace_t {
    nothing,
    files,           // of the album that have other contents; but the noted sum of what is already there stays
    files_and_sums,  // also where the album's file was changed to what is imported now
};

// An album that a user wants: made, or added to where it is there.
struct album_order_t {
    std::string source;
    std::vector<files_t> files;  // of the source
    std::string album;

    // The texts of its pages. An empty one stays as the album has it, else comes from the source; the title comes at
    // last from the directory's name. Of the source's head.txt and last.txt those are not imported that say something
    // else than what is given here.
    std::optional<std::string> title;
    std::optional<std::string> head;
    std::optional<std::string> last;

    import_options_t options;
    replace_t replace = replace_t::nothing;

    // The directory above gets its book's page also when it has no texts yet.
    bool is_in_book = false;
};

// What is done for an album, in this order.
enum class album_step_t {
    source,     // looked at: it must not lie inside the album, unless it is the album's original/
    conflicts,  // looked for, as far as they are not to be replaced: files with other contents or another sum
    names,      // looked at: whether the album's disk tells them apart
    room,       // looked for
    directory,  // made
    lock,       // taken, or the user did not want to wait
    texts,      // saved
    import,
    book_page,  // of the directory above
};

struct album_result_t {
    std::optional<album_step_t> refused;  // the step that failed, those before it are done; empty: the album is made
    std::string reason;                   // the innermost line that was reported about it
    bool stopped = false;                 // in that step, by the caller; no reason then, unless the import has one
    std::vector<std::string> conflicts;   // paths of the files that differ
    std::vector<clash_t> clashes;
    std::string missing_room;  // such as "1.5 GiB"
    import_result_t import;    // its files that were left out, and where it ended

    [[nodiscard]] bool is_made() const { return !refused; }
    [[nodiscard]] bool is_only_stopped() const { return stopped && reason.empty(); }
};

// True when what lies in `source` may be changed or removed by an import into `album`.
[[nodiscard]] bool is_unfit_source(const std::string& source, const std::string& album);

// The steps that only look, up to the one about room: for a window that asks before it closes. Nothing is written.
[[nodiscard]] album_result_t check_album_order(const album_order_t& order, progress_signals_t& progress);
[[nodiscard]] album_result_t check_album_order(const album_order_t& order);

// Makes the album while no other program writes to it. Each failure is reported as a trace of lines, from the innermost
// step to the outermost; what was done so far stays. After a stop the book's page tells of it.
[[nodiscard]] album_result_t make_album(const album_order_t& order, progress_signals_t& progress);

}  // namespace taloram
