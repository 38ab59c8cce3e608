#include "album/make_album.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>

#include "album/engine_step.h"
#include "album/import/import_check.h"
#include "album/pages/book_index.h"
#include "album/sums/verification.h"
#include "album/texts/comment_store.h"
#include "album/write_lock.h"
#include "libutils/diagnostics.h"
#include "libutils/files/directory.h"
#include "libutils/files/path.h"
#include "libutils/files/system_path.h"
#include "libutils/text/text.h"
#include "talolib/option.h"

namespace taloram {

namespace {

// The source's texts of an album that is to have other ones: as files they would be copied over what the user wrote.
// One that can't be read is none of them, and fails as a copy.
std::vector<std::string> texts_not_wanted(const album_order_t& order) {
    comment_texts_t own;
    if (load_comments_in(own, order.source)) {
        return {};
    }
    const auto is_other = [](const std::optional<std::string>& wanted, const std::string& text) {
        return wanted && *wanted != text;
    };
    std::vector<std::string> names;
    if (is_other(order.title, own.title) || is_other(order.head, own.head)) {
        names.emplace_back(layout::head_text);
    }
    if (is_other(order.last, own.last)) {
        names.emplace_back(layout::last_text);
    }
    return names;
}

class maker_t {
  public:
    maker_t(const album_order_t& order, progress_signals_t& progress) : order_(order), progress_(progress) {
        const std::vector<std::string> others = texts_not_wanted(order);
        for (const files_t& file : order.files) {
            const bool is_other = std::find(others.begin(), others.end(), file.filename) != others.end();
            (is_other ? left_texts_ : files_).push_back(file);
        }
    }

    [[nodiscard]] bool check() {
        return done(album_step_t::source, has_fit_source()) && done(album_step_t::conflicts, has_no_conflicts()) &&
               done(album_step_t::names, has_distinct_names()) && done(album_step_t::room, has_room());
    }

    // Who wrote to the album until the lock was taken may have brought files that are in the way.
    [[nodiscard]] bool make() {
        const bool is_new = !is_exist(order_.album);
        return (!is_new || check()) && done(album_step_t::directory, make_directory()) &&
               done(album_step_t::lock, lock_album(lock_, order_.album)) && check() && warn() &&
               done(album_step_t::texts, save_texts()) && done(album_step_t::import, import()) &&
               done(album_step_t::book_page, rewrite_book());
    }

    [[nodiscard]] const album_result_t& result() const { return result_; }

  private:
    // What a stopped step found out means nothing.
    bool done(album_step_t step, bool is_done) {
        if (!is_done || result_.stopped) {
            result_.refused = step;
            result_.reason = result_.import.failed ? result_.import.reason : result_.stopped ? "" : heard_.line();
            is_done = false;
        }
        heard_.clear();
        return is_done;
    }

    [[nodiscard]] bool has_fit_source() const {
        const bool is_fit = !is_unfit_source(order_.source, order_.album);
        if (!is_fit) {
            libutils::report(libutils::printable(order_.source), ": inside the album ",
                             libutils::printable(order_.album), "; only its original/ can be imported again.");
        }
        return is_fit;
    }

    [[nodiscard]] bool has_no_conflicts() {
        std::vector<std::string>& conflicts = result_.conflicts;
        conflicts.clear();
        if (order_.replace == replace_t::files_and_sums) {
            return true;
        }
        const bool replaces = order_.replace == replace_t::files;
        if (!replaces) {
            conflicts = find_conflicts(order_.source, files_, order_.album, goes_on_);
        }
        if (result_.stopped) {
            return false;
        }
        for (const std::string& path : conflicts) {
            libutils::report(libutils::printable(path), ": there already, with other contents.");
        }
        const auto add_once = [&](const std::string& path, const std::string& what) {
            if (std::find(conflicts.begin(), conflicts.end(), path) == conflicts.end()) {
                conflicts.push_back(path);
                libutils::report(libutils::printable(path), ": ", what);
            }
        };
        const bool keeps = keeps_sums(order_.source, files_, order_.album, replaces, add_once, goes_on_);
        return conflicts.empty() && keeps;
    }

    [[nodiscard]] bool has_distinct_names() {
        const std::error_code failure = find_clashes(result_.clashes, files_, order_.album);
        for (const auto& [a, b] : result_.clashes) {
            libutils::report(libutils::printable(entry_path(order_.album, a)), ", ", libutils::printable(b),
                             ": one file for the album's disk; rename one before the import.");
        }
        return !failure && result_.clashes.empty();
    }

    [[nodiscard]] bool has_room() {
        result_.missing_room = missing_room(order_.source, files_, order_.album, goes_on_);
        if (!result_.stopped && !result_.missing_room.empty()) {
            libutils::report(order_.album, ": ", result_.missing_room, " more free space is needed for this import.");
        }
        return result_.missing_room.empty();
    }

    [[nodiscard]] bool make_directory() const {
        if (!libutils::mkdir(order_.album.c_str())) {
            libutils::report(order_.album, ": mkdir failed, ", std::strerror(errno));
            return false;
        }
        talolib::trace(std::cout, order_.album, ": mkdired.");
        return true;
    }

    [[nodiscard]] bool warn() const {
        for (const files_t& file : left_texts_) {
            libutils::report(libutils::printable(entry_path(order_.source, file.filename)),
                             ": not imported; the album gets another text.");
        }
        warn_of_names(files_, order_.album);
        return true;
    }

    // Texts that are all given need no others.
    [[nodiscard]] bool save_texts() const {
        comment_texts_t texts;
        if (!order_.title || !order_.head || !order_.last) {
            unread_text_t unread = load_comments_in(texts, order_.source);
            if (!unread) {
                unread = load_comments(texts, order_.album);
            }
            if (unread) {
                report_unread(unread);
                return false;
            }
        }
        std::string title = order_.title.value_or(texts.title);
        if (title.empty()) {
            title = libutils::directory_name(order_.album);
        }
        return step_done(
            savecommenttxt(order_.album, title, order_.head.value_or(texts.head), order_.last.value_or(texts.last)),
            "savecommenttxt");
    }

    [[nodiscard]] bool import() {
        result_.import = import_album(order_.source, files_, order_.album, order_.options, progress_);
        result_.stopped = result_.import.stopped;
        if (result_.stopped && !rewrite_book() && result_.import.reason.empty()) {
            result_.import.reason = heard_.line();
        }
        return result_.import.is_done();
    }

    // The index page of the book that the album is in, if it is in one.
    [[nodiscard]] bool rewrite_book() const {
        const std::string parent = libutils::parent_directory(order_.album);
        talolib::trace(std::cout, parent, ": basedir.");
        const bool is_book = libutils::is_directory(entry_path(parent, layout::text)) && !is_album(parent);
        return (!is_book && !order_.is_in_book) || step_done(makehtmlbook(parent), "makehtmlbook");
    }

    const album_order_t& order_;
    std::vector<files_t> files_;       // of the order, to be imported
    std::vector<files_t> left_texts_;  // of the order, not to be imported
    progress_signals_t& progress_;
    album_result_t result_;
    libutils::goes_on_t goes_on_ = lasting_goes_on(progress_, result_.stopped);
    libutils::first_report_t heard_;
    write_lock_t lock_;
};

}  // namespace

bool is_unfit_source(const std::string& source, const std::string& album) {
    if (libutils::is_same_file(source, entry_path(album, layout::original))) {
        return false;
    }
    const std::string real_album = libutils::real_directory(album);
    const std::string real_source = libutils::real_directory(source);
    if (!real_album.empty() && real_source.size() > real_album.size() && real_source.starts_with(real_album)) {
        return true;
    }
    std::vector<std::string> directories = level_directories(album, highest_top_level);
    for (const char* directory : {layout::movie, layout::text, layout::html}) {
        directories.push_back(entry_path(album, directory));
    }
    return std::any_of(directories.begin(), directories.end(),
                       [&](const std::string& directory) { return libutils::is_same_file(source, directory); });
}

album_result_t check_album_order(const album_order_t& order) {
    progress_signals_t unseen;
    return check_album_order(order, unseen);
}

album_result_t check_album_order(const album_order_t& order, progress_signals_t& progress) {
    maker_t maker(order, progress);
    static_cast<void>(maker.check());
    return maker.result();
}

album_result_t make_album(const album_order_t& order, progress_signals_t& progress) {
    maker_t maker(order, progress);
    static_cast<void>(maker.make());
    return maker.result();
}

}  // namespace taloram
