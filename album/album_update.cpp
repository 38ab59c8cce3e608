#include "album/album_update.h"

#include <list>

#include "album/album_pages.h"
#include "album/album_walk.h"
#include "album/book_index.h"
#include "album/engine_step.h"
#include "album/pending_turn.h"
#include "album/reduced_sizes.h"
#include "album/write_lock.h"
#include "libutils/diagnostics.h"
#include "libutils/directory.h"
#include "libutils/new_file.h"

namespace taloram {

namespace {

bool list_originals(std::vector<files_t>& files, const std::string& album) {
    const std::string directory = entry_path(album, layout::original);
    std::list<std::string> names;
    if (const std::error_code failure = libutils::list_files(names, directory)) {
        libutils::report(directory, ": getfiles failed, ", failure.message());
        return false;
    }
    for (const std::string& name : names) {
        files.push_back({name, 0});
    }
    return true;
}

bool update_book_page(const std::string& book) {
    // The walk names what is closed.
    if (!write_book_page(book, closed_t::pass_over)) {
        libutils::report(book, ": makehtmlbook() failed.");
        return false;
    }
    return true;
}

}  // namespace

bool updatealbum(const std::vector<files_t>& files, const std::string& album, progress_t& copyprogress,
                 progress_t& shrinkprogress, progress_t& htmlprogress, progress_t& zoomprogress) {
    progress_signals_t progress{copyprogress, {}, shrinkprogress, htmlprogress, zoomprogress, {}};
    return updatealbum(files, album, progress);
}

bool updatealbum(const std::vector<files_t>& files, const std::string& album, progress_signals_t& progress) {
    if (!names_an_album(album)) {
        return false;
    }
    write_lock_t lock;
    if (!lock_album(lock, album)) {
        return false;
    }
    libutils::remove_leftovers(album);
    if (!end_left_turns(album)) {
        return false;
    }
    progress.begun.emit(album, files);
    // An import that was stopped while it copied has left none.
    libutils::mkdir(entry_path(album, layout::thumb).c_str());
    return step_done(shrinkupdate(files, album, progress.sizes), "shrinkupdate") &&
           step_done(makehtml(album, progress.pages), "makehtml") &&
           step_done(makehtmlzoom(album, progress.zoom_pages), "makehtmlzoom");
}

bool batchupdate(const std::string& path, progress_t& copyprogress, progress_t& shrinkprogress,
                 progress_t& htmlprogress, progress_t& zoomprogress) {
    progress_signals_t progress{copyprogress, {}, shrinkprogress, htmlprogress, zoomprogress, {}};
    return batchupdate(path, update_options_t(), progress);
}

bool batchupdate(const std::string& path, const update_options_t& options, progress_signals_t& progress) {
    const auto update_album = [&](const std::string& album) {
        write_lock_t lock;
        std::vector<files_t> files;
        return lock_album(lock, album) && list_originals(files, album) &&
               step_done(treat_orphans(album, options.orphans), "prune") && updatealbum(files, album, progress);
    };
    const auto update_book = [&](const std::string& book) {
        // It may have become an album while its import was waited for.
        write_lock_t lock;
        if (!lock_album(lock, book)) {
            return false;
        }
        if (is_album(book)) {
            return update_album(book);
        }
        progress.begun.emit(book, {});
        return update_book_page(book);
    };
    return visit_albums(path, {update_album, update_book}).succeeded;
}

}  // namespace taloram
