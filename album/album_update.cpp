#include "album/album_update.h"

#include <list>

#include "album/album_pages.h"
#include "album/book_index.h"
#include "album/engine_step.h"
#include "album/reduced_sizes.h"
#include "libutils/diagnostics.h"
#include "libutils/directory.h"

namespace taloram {

namespace {

struct progresses_t {
    progress_t& copy;
    progress_t& shrink;
    progress_t& html;
    progress_t& zoom;
};

// What became of a directory and all below it.
struct outcome_t {
    bool succeeded = true;
    bool has_album = false;
};

bool update_all_originals(const std::string& album, const progresses_t& progresses) {
    const std::string directory = entry_path(album, layout::original);
    std::list<std::string> names;
    if (!libutils::getfiles(names, directory.c_str())) {
        libutils::report(directory, ": getfiles failed.");
        return false;
    }
    std::vector<files_t> files;
    for (const std::string& name : names) {
        files.push_back({name, 0});
    }
    return updatealbum(files, album, progresses.copy, progresses.shrink, progresses.html, progresses.zoom);
}

// Paths grow with every level, so that the system's limit on their length bounds the depth.
outcome_t update_below(const std::string& path, bool named_by_user, const progresses_t& progresses) {
    if (is_album(path)) {
        return {update_all_originals(path, progresses), true};
    }
    std::list<std::string> names;
    if (!libutils::getdirs(names, path.c_str())) {
        libutils::report(path, ": getdirs() failed.");
        return {false, false};
    }
    outcome_t outcome;
    for (const std::string& name : names) {
        const outcome_t below = update_below(entry_path(path, name), false, progresses);
        outcome.succeeded = below.succeeded && outcome.succeeded;
        outcome.has_album = below.has_album || outcome.has_album;
    }
    const bool is_book = named_by_user || outcome.has_album || is_exist(entry_path(path, layout::text));
    if (is_book && !makehtmlbook(path)) {
        libutils::report(path, ": makehtmlbook() failed.");
        outcome.succeeded = false;
    }
    return outcome;
}

}  // namespace

bool updatealbum(const std::vector<files_t>& files, const std::string& album, progress_t& /*copyprogress*/,
                 progress_t& shrinkprogress, progress_t& htmlprogress, progress_t& zoomprogress) {
    if (!names_an_album(album)) {
        return false;
    }
    // An import that was stopped while it copied has left none.
    libutils::mkdir(entry_path(album, layout::thumb).c_str());
    return step_done(shrinkupdate(files, album, shrinkprogress), "shrinkupdate") &&
           step_done(makehtml(album, htmlprogress), "makehtml") &&
           step_done(makehtmlzoom(album, zoomprogress), "makehtmlzoom");
}

bool batchupdate(const std::string& path, progress_t& copyprogress, progress_t& shrinkprogress,
                 progress_t& htmlprogress, progress_t& zoomprogress) {
    return update_below(path, true, {copyprogress, shrinkprogress, htmlprogress, zoomprogress}).succeeded;
}

}  // namespace taloram
