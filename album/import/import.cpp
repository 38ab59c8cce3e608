#include "album/import/import.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <set>
#include <tuple>

#include "album/engine_step.h"
#include "album/import/import_file.h"
#include "album/orphans.h"
#include "album/pages/album_pages.h"
#include "album/sizes/reduced_sizes.h"
#include "album/sizes/unflushed_sizes.h"
#include "album/sums/checksum.h"
#include "album/sums/manifest.h"
#include "album/sums/verification.h"
#include "album/turn/pending_turn.h"
#include "album/work_meter.h"
#include "album/write_lock.h"
#include "libutils/diagnostics.h"
#include "libutils/files/directory.h"
#include "libutils/files/new_file.h"
#include "libutils/files/path.h"

namespace taloram {

namespace {

// One import, step by step. Files that fail on the way drop out of the list.
class import_t {
  public:
    import_t(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
             const import_options_t& options, progress_signals_t& progress)
        : srcdir_(srcdir), album_(album), options_(options), files_(files), progress_(progress) {}

    [[nodiscard]] import_result_t run();

  private:
    [[nodiscard]] bool copy(progress_t& progress);
    [[nodiscard]] bool verify(progress_t& progress);
    [[nodiscard]] bool make_sizes(progress_t& progress);
    [[nodiscard]] bool note_sums(progress_t& progress, bool from_disk);
    [[nodiscard]] bool note_sum(const std::string& name, bool from_disk);
    [[nodiscard]] std::vector<double> amounts(stage_t stage) const;
    [[nodiscard]] import_result_t stop(stage_t stage);
    [[nodiscard]] bool remove_failed();
    [[nodiscard]] bool remove_original(const std::string& name);
    void drop_failed();

    // True when the step is to go on with the other files.
    [[nodiscard]] bool collect(const files_t& file, const std::error_code& reason = {}) {
        const left_out_t failed{file.filename, heard_.line() + (reason ? " " + reason.message() : "")};
        const bool has_ended = !ended_at_.name.empty();
        const bool is_left_out =
            !has_ended && (options_.keep_going || (options_.leaves_out && options_.leaves_out(failed)));
        if (is_left_out) {
            failed_.push_back(failed);
        } else if (!has_ended) {
            ended_at_ = failed;
        }
        return is_left_out;
    }
    [[nodiscard]] failed_file_t collector() {
        return [this](const files_t& file) { return collect(file); };
    }

    std::string srcdir_;
    std::string album_;
    import_options_t options_;
    std::vector<files_t> files_;  // those that did not fail so far
    progress_signals_t& progress_;
    bool stopped_ = false;
    libutils::goes_on_t goes_on_ = lasting_goes_on(progress_, stopped_);
    std::set<std::string> replaced_;    // names of files that were copied and have no sum yet
    std::vector<left_out_t> failed_;    // in this step, to be left out
    std::vector<left_out_t> left_out_;  // in earlier steps
    left_out_t ended_at_;               // the file whose failure ended the import
    libutils::first_report_t heard_;    // about the file that is worked on
    manifest_t manifest_;
};

import_result_t import_t::run() {
    struct step_t {
        stage_t stage;
        const char* name;
        std::function<bool(progress_t&)> run;
    };
    const step_t steps[] = {
        {stage_t::copy, "copyfiles", [this](progress_t& done) { return copy(done); }},
        {stage_t::verify, "verify", [this](progress_t& done) { return verify(done); }},
        {stage_t::sizes, "shrink", [this](progress_t& done) { return make_sizes(done); }},
        {stage_t::pages, "makehtml", [this](progress_t& done) { return makehtml(album_, done); }},
        {stage_t::zoom_pages, "makehtmlzoom", [this](progress_t& done) { return makehtmlzoom(album_, done); }},
    };
    if (!manifest_.load(album_)) {
        return {stage_t::copy, "", heard_.line(), {}};
    }
    for (const step_t& step : steps) {
        heard_.clear();
        work_meter_t meter(progress_, step.stage, amounts(step.stage));
        progress_t done;
        done.connect([&](double fraction) {
            heard_.clear();
            progress_.of(step.stage).emit(fraction);
            meter.advance(fraction);
            if (step.stage >= stage_t::pages) {
                std::ignore = progress_.goes_on();  // holds; pages are written to their end
            }
        });
        const bool is_done = step.run(done);
        if (stopped_ && ended_at_.name.empty()) {
            return stop(step.stage);
        }
        if (!step_done(is_done, step.name)) {
            const std::string reason = ended_at_.name.empty() ? heard_.line() : ended_at_.reason;
            return {step.stage, ended_at_.name, reason, left_out_};
        }
    }
    return {{}, "", "", left_out_};
}

// The bytes of each file that a stage has to do with.
std::vector<double> import_t::amounts(stage_t stage) const {
    const bool compares = options_.verify || manifest_.is_kept();
    if (stage >= stage_t::pages || (stage == stage_t::verify && !compares)) {
        return {};
    }
    std::vector<double> amounts;
    for (const files_t& file : files_) {
        const bool counts = stage != stage_t::sizes || is_photo(file.filename);
        amounts.push_back(counts ? length_of(locate_import(srcdir_, file.filename, album_).source) : 0);
    }
    return amounts;
}

// Without thumb/ an album counts as one whose copies are not complete, and that is offered to the user.
import_result_t import_t::stop(stage_t stage) {
    heard_.clear();
    for (const std::string& name : replaced_) {
        manifest_.remove(locate_import(srcdir_, name, album_).path_in_album);
    }
    const bool noted = !manifest_.is_kept() || manifest_.save(album_);
    const bool written = is_exist(entry_path(album_, layout::thumb))
                             ? write_pages(album_, progress_)
                             : step_done(makehtml(album_, progress_.pages), "makehtml");
    return {stage, "", noted && written ? "" : heard_.line(), left_out_, true};
}

bool import_t::copy(progress_t& progress) {
    const std::string originals = entry_path(album_, layout::original);
    const bool may_go_on = options_.keep_going || options_.leaves_out;
    if (may_go_on && !libutils::mkdir(originals.c_str())) {
        libutils::report(originals, ": mkdir failed, ", std::strerror(errno));
        return false;
    }
    const bool copied =
        copy_files(srcdir_, files_, album_, progress,
                   {[this](const files_t& file, const std::error_code& reason) { return collect(file, reason); },
                    [this](const files_t& file) { replaced_.insert(file.filename); }, goes_on_});
    if (stopped_) {
        drop_failed();
        return false;
    }
    if (!copied) {
        // What was copied stays, and a sum of what it replaced would call it changed.
        files_.erase(std::find_if(files_.begin(), files_.end(),
                                  [this](const files_t& file) { return file.filename == ended_at_.name; }),
                     files_.end());
        drop_failed();
        progress_t unseen;
        static_cast<void>(manifest_.is_kept() && note_sums(unseen, false));
        return false;
    }
    drop_failed();
    return true;
}

bool import_t::verify(progress_t& progress) {
    if (!options_.verify && !manifest_.is_kept()) {
        return true;
    }
    const bool noted = note_sums(progress, options_.verify);
    return remove_failed() && noted;
}

bool import_t::make_sizes(progress_t& progress) {
    const bool made = shrink(album_, files_, progress, collector(), goes_on_);
    return remove_failed() && made;
}

bool import_t::note_sums(progress_t& progress, bool from_disk) {
    bool good = true;
    for (size_t i = 0; good && i < files_.size(); ++i) {
        good = goes_on_() && (note_sum(files_[i].filename, from_disk) || (!stopped_ && collect(files_[i])));
        if (good) {
            emit_progress(progress, i, files_.size());
        }
    }
    const bool flushed = !from_disk || flush_album_names(album_);
    return manifest_.save(album_) && flushed && good;
}

bool import_t::note_sum(const std::string& name, bool from_disk) {
    const import_file_t file = locate_import(srcdir_, name, album_);
    const bool is_listed = is_photo(name) || is_movie(name);
    if (!from_disk && !is_listed) {
        return true;
    }
    std::string sum;
    if (from_disk ? !verify_copy(sum, file, manifest_, goes_on_)
                  : static_cast<bool>(sha256_of_file(sum, file.destination, read_from_t::anywhere, goes_on_))) {
        return !stopped_ && copy_failed(file.destination);
    }
    // Of the album's own file the first sum counts: it is what tells that the file changed.
    if (is_listed && !(file.in_place && manifest_.sum_of(file.path_in_album))) {
        manifest_.set(file.path_in_album, sum);
    }
    replaced_.erase(name);
    return true;
}

// Takes what failed after the copy stage out of the album.
bool import_t::remove_failed() {
    if (failed_.empty()) {
        return true;
    }
    bool removed = true;
    for (const auto& [name, reason] : failed_) {
        removed = (!is_photo(name) || remove_traces(album_, name)) && removed;
        removed = remove_original(name) && removed;
    }
    remove_empty_levels(album_);
    drop_failed();
    return (!manifest_.is_kept() || manifest_.save(album_)) && removed;
}

bool import_t::remove_original(const std::string& name) {
    const import_file_t file = locate_import(srcdir_, name, album_);
    if (file.in_place) {
        return true;
    }
    manifest_.remove(file.path_in_album);
    std::string sum;
    if (libutils::is_same_file(file.source, file.destination) ||
        sha256_of_file(sum, file.source, read_from_t::anywhere)) {
        libutils::report(file.destination, ": stays, because its source can't be read any more.");
        return true;
    }
    return remove_file(file.destination);
}

void import_t::drop_failed() {
    std::set<std::string> failed;
    for (const left_out_t& file : failed_) {
        failed.insert(file.name);
    }
    std::erase_if(files_, [&](const files_t& file) { return failed.count(file.filename) != 0; });
    left_out_.insert(left_out_.end(), failed_.begin(), failed_.end());
    failed_.clear();
}

}  // namespace

bool makealbumwithrotate(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
                         progress_t& copyprogress, progress_t& shrinkprogress, progress_t& htmlprogress,
                         progress_t& zoomprogress) {
    progress_signals_t progress{copyprogress, {}, shrinkprogress, htmlprogress, zoomprogress, {}};
    return import_album(srcdir, files, album, {}, progress).is_done();
}

import_result_t import_album(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
                             const import_options_t& options, progress_signals_t& progress) {
    const libutils::first_report_t heard;
    write_lock_t lock;
    if (!names_an_album(album) || !lock_album(lock, album)) {
        return {stage_t::copy, "", heard.line(), {}};
    }
    libutils::remove_leftovers(album);
    if (!end_left_turns(album)) {
        return {stage_t::copy, "", heard.line(), {}};
    }
    remove_broken_sizes(album);
    progress.begun.emit(album, files);
    import_result_t result = import_t(srcdir, files, album, options, progress).run();
    const libutils::first_report_t unflushed;
    if (!flush_sizes(album) && result.is_done()) {
        result.failed = stage_t::zoom_pages;
        result.reason = unflushed.line();
    }
    return result;
}

bool hardlinkone(const std::string& from, const std::string& to) {
    if (is_exist(to)) {
        unlink(to.c_str());
    }
    const std::string command = "ln " + from + " " + to;
    if (std::system(command.c_str()) != 0) {
        libutils::report(command, ": hard link failed.");
        return false;
    }
    return true;
}

bool hardlink(const std::string& album, const std::string& name) {
    return hardlinkone(original_path(album, name), entry_path(entry_path(album, level_name(0)), name));
}

}  // namespace taloram
