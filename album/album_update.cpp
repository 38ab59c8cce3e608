#include "album/album_update.h"

#include <algorithm>
#include <list>
#include <tuple>

#include "album/album_walk.h"
#include "album/engine_step.h"
#include "album/pages/album_pages.h"
#include "album/pages/book_index.h"
#include "album/sizes/reduced_sizes.h"
#include "album/sizes/unflushed_sizes.h"
#include "album/turn/pending_turn.h"
#include "album/work_meter.h"
#include "album/write_lock.h"
#include "libutils/diagnostics.h"
#include "libutils/files/directory.h"
#include "libutils/files/new_file.h"

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

// Follows one update, to tell what it failed at.
class watched_update_t {
  public:
    watched_update_t(const std::vector<files_t>& files, const std::string& album) : files_(files), album_(album) {}

    [[nodiscard]] update_result_t run(progress_signals_t& progress) {
        const bool made = make_sizes(progress);
        const bool is_done = (failure_.stopped || step_done(made, "shrinkupdate")) &&
                             step_done(watched(progress, progress.pages, makehtml), "makehtml") &&
                             step_done(watched(progress, progress.zoom_pages, makehtmlzoom), "makehtmlzoom");
        if (!is_done && failure_.reason.empty()) {
            failure_.reason = heard_.line();
        }
        return is_done && !failure_.stopped ? update_result_t() : failure_;
    }

  private:
    template <class step_t>
    bool watched(progress_signals_t& progress, progress_t& stage, const step_t& step) {
        heard_.clear();
        // What was told of a file that is done was no reason.
        progress_t done;
        done.connect([&](double fraction) {
            heard_.clear();
            stage.emit(fraction);
            if (&stage != &progress.sizes) {
                std::ignore = progress.goes_on();  // holds; pages are written to their end
            }
        });
        return step(album_, done);
    }

    bool make_sizes(progress_signals_t& progress) {
        const auto failed = [this](const files_t& file) {
            failure_ = {original_path(album_, file.filename), heard_.line()};
            return false;
        };
        work_meter_t meter(progress, stage_t::sizes, amounts());
        sigc::connection measured = progress.sizes.connect([&](double fraction) { meter.advance(fraction); });
        const bool made = watched(progress, progress.sizes, [&](const std::string& album, progress_t& done) {
            return shrinkupdate(files_, album, done, failed, lasting_goes_on(progress, failure_.stopped));
        });
        measured.disconnect();
        return made;
    }

    // A photograph whose thumbnail is there, which is made last, is mostly up to date.
    [[nodiscard]] std::vector<double> amounts() const {
        std::vector<double> amounts;
        for (const auto& [name, turns] : files_) {
            const bool is_done = !is_photo(name) || (turns == 0 && is_exist(thumb_path(album_, name)));
            amounts.push_back(is_done ? 0 : length_of(original_path(album_, name)));
        }
        return amounts;
    }

    const std::vector<files_t>& files_;
    const std::string& album_;
    update_failure_t failure_;
    libutils::first_report_t heard_;
};

}  // namespace

bool updatealbum(const std::vector<files_t>& files, const std::string& album, progress_t& copyprogress,
                 progress_t& shrinkprogress, progress_t& htmlprogress, progress_t& zoomprogress) {
    progress_signals_t progress{copyprogress, {}, shrinkprogress, htmlprogress, zoomprogress, {}};
    return !update_album(files, album, progress);
}

update_result_t update_album(const std::vector<files_t>& files, const std::string& album,
                             progress_signals_t& progress) {
    const libutils::first_report_t heard;
    write_lock_t lock;
    if (!names_an_album(album) || !lock_album(lock, album)) {
        return update_failure_t{"", heard.line()};
    }
    libutils::remove_leftovers(album);
    if (!end_left_turns(album)) {
        return update_failure_t{"", heard.line()};
    }
    remove_broken_sizes(album);
    progress.begun.emit(album, files);
    // An import that was stopped while it copied has left none.
    libutils::mkdir(entry_path(album, layout::thumb).c_str());
    const update_result_t result = watched_update_t(files, album).run(progress);
    const libutils::first_report_t unflushed;
    const bool flushed = !has_unflushed_sizes(album) || flush_sizes(album);
    return result || flushed ? result : update_failure_t{"", unflushed.line()};
}

bool batchupdate(const std::string& path, progress_t& copyprogress, progress_t& shrinkprogress,
                 progress_t& htmlprogress, progress_t& zoomprogress) {
    progress_signals_t progress{copyprogress, {}, shrinkprogress, htmlprogress, zoomprogress, {}};
    return !update_all(path, update_options_t(), progress);
}

update_result_t update_all(const std::string& path, const update_options_t& options, progress_signals_t& progress) {
    update_result_t first;
    libutils::first_report_t heard;
    const auto note = [&](bool is_done, const update_result_t& failure = {}) {
        if (!is_done && !first) {
            first = failure.value_or(update_failure_t{"", heard.line()});
        }
        heard.clear();
        return is_done;
    };
    bool stopped = false;
    std::vector<std::string> updated;
    const auto update = [&](const std::string& album) {
        if (stopped) {
            return true;
        }
        updated.push_back(album);
        write_lock_t lock;
        std::vector<files_t> files;
        if (!lock_album(lock, album) || !list_originals(files, album) ||
            !step_done(prune_orphans(album, options.orphans), "prune")) {
            return note(false);
        }
        const update_result_t failure = update_album(files, album, progress);
        stopped = failure && failure->stopped;
        return note(!failure, failure);
    };
    const auto lies_above_updated = [&](const std::string& book) {
        return std::any_of(updated.begin(), updated.end(),
                           [&](const std::string& album) { return album.starts_with(entry_path(book, "")); });
    };
    const auto update_book = [&](const std::string& book) {
        if (stopped && !lies_above_updated(book)) {
            return true;
        }
        // It may have become an album while its import was waited for.
        write_lock_t lock;
        if (!lock_album(lock, book)) {
            return note(false);
        }
        if (is_album(book)) {
            return update(book);
        }
        progress.begun.emit(book, {});
        return note(update_book_page(book));
    };
    static_cast<void>(note(visit_albums(path, {update, update_book}).succeeded));
    if (stopped) {
        first->stopped = true;
    }
    return first;
}

}  // namespace taloram
