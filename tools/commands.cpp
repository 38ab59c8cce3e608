#include "tools/commands.h"

#include <cerrno>
#include <cstring>
#include <iostream>
#include <sstream>

#include "album/album_update.h"
#include "album/album_walk.h"
#include "album/engine_step.h"
#include "album/make_album.h"
#include "album/pages/album_pages.h"
#include "album/pages/book_index.h"
#include "album/publish/publish.h"
#include "album/sums/verification.h"
#include "album/turn/turn_photo.h"
#include "libutils/files/directory.h"
#include "libutils/files/path.h"
#include "libutils/files/system_path.h"
#include "shooting_data/exif_summary.h"
#include "tools/card_command.h"
#include "tools/check_arguments.h"
#include "tools/look_command.h"
#include "tools/start_up.h"
#include "tools/wrong_use.h"

namespace talomake {

using namespace taloram;

namespace {

void report_failed(const album_result_t& result, size_t file_count) {
    if (!result.conflicts.empty()) {
        libutils::report("talomake: nothing was imported. Files that differ: ", result.conflicts.size(),
                         "; --replace replaces them.");
    }
    const std::vector<left_out_t>& left_out = result.import.left_out;
    std::string names;
    for (const left_out_t& file : left_out) {
        names += (names.empty() ? "" : ", ") + file.name;
    }
    if (!left_out.empty()) {
        libutils::report("talomake: ", left_out.size(), " of ", file_count,
                         " files failed: ", libutils::printable(names));
    }
}

bool verify_one_album(const std::string& album) {
    progress_signals_t unseen;
    const auto report_flaw = [](const flawed_file_t& file) {
        libutils::report(libutils::printable(file.path), ": ", flaw_text(file));
    };
    const verify_result_t result = verify_album(album, report_flaw, unseen);
    if (result.is_good) {
        std::cout << libutils::join_text(libutils::printable(album), ": ", result.count,
                                         result.count == 1 ? " file" : " files", " as imported.\n");
    }
    return result.is_good;
}

class runner_t {
  public:
    explicit runner_t(const char* program) : program_(program) {}

    int operator()(const album_command_t& command) const {
        album_order_t order;
        if (!check_album(command, order)) {
            return programs::status_wrong_use;
        }
        start_up(program_, command.run);
        album_result_t result;
        {
            shown_progress_t progress(command.run.progress);
            result = make_album(order, progress.signals);
        }
        if (result.is_made()) {
            std::cout << order.album << "/index.html\n" << std::flush;
        }
        report_failed(result, order.files.size());
        return result.is_made() && result.import.left_out.empty() ? programs::status_done : programs::status_failed;
    }

    int operator()(const update_command_t& command) const {
        std::vector<std::string> directories;
        if (!check_directories(command.directories, directories)) {
            return programs::status_wrong_use;
        }
        start_up(program_, command.run);
        shown_progress_t progress(command.run.progress);
        bool good = true;
        for (const std::string& directory : directories) {
            good = !update_all(directory, {command.prune ? orphans_t::remove : orphans_t::report}, progress.signals) &&
                   good;
        }
        return good ? programs::status_done : programs::status_failed;
    }

    int operator()(const verify_command_t& command) const {
        std::vector<std::string> directories;
        if (!check_directories(command.directories, directories)) {
            return programs::status_wrong_use;
        }
        start_up(program_);
        bool good = true;
        for (const std::string& directory : directories) {
            const walk_outcome_t outcome =
                visit_albums(directory, {verify_one_album, [](const std::string& /*book*/) { return true; }});
            if (!outcome.has_album) {
                libutils::report(directory, ": has no album.");
            }
            good = outcome.succeeded && outcome.has_album && good;
        }
        return good ? programs::status_done : programs::status_failed;
    }

    int operator()(const book_command_t& command) const {
        std::vector<std::string> books;
        if (!check_books(command.directories, books)) {
            return programs::status_wrong_use;
        }
        start_up(program_);
        bool good = true;
        for (const std::string& book : books) {
            good = makehtmlbook(book) && good;
        }
        return good ? programs::status_done : programs::status_failed;
    }

    int operator()(const turn_command_t& command) const {
        std::string album;
        if (!check_turn(command, album)) {
            return programs::status_wrong_use;
        }
        start_up(program_);
        shown_progress_t progress(progress_mode_t::automatic);
        const turned_t turned = turn_photos(album, command.photos, command.quarter_turns, progress.signals);
        return step_done(turned != turned_t::none, "turn_photos") && turned == turned_t::all ? programs::status_done
                                                                                             : programs::status_failed;
    }

    int operator()(const exif_command_t& command) const {
        if (!check_photos(command.photos)) {
            return programs::status_wrong_use;
        }
        start_up(program_);
        int status = programs::status_done;
        for (const std::string& photo : command.photos) {
            // A stream of its own: the number format that one summary leaves must not reach the next.
            std::ostringstream summary;
            const bool good = write_summary(summary, photo, command.html);
            std::cout << photo << '\n' << summary.str() << std::endl;
            if (!good) {
                libutils::report(photo, ": no EXIF summary.");
                status = programs::status_failed;
            }
        }
        return status;
    }

    int operator()(const publish_command_t& command) const {
        publish_order_t order;
        if (!check_publish(command, order)) {
            return programs::status_wrong_use;
        }
        start_up(program_);
        published_t result;
        {
            shown_progress_t progress(progress_mode_t::automatic);
            result = publish(order, progress.signals.copy);
        }
        if (result.outdated != 0) {
            libutils::report("talomake: ", result.outdated,
                             " files that were published before are no longer in the album; --prune removes them.");
        }
        if (result.is_complete) {
            std::cout << order.directory << "/index.html\n" << std::flush;
        }
        return result.is_complete ? programs::status_done : programs::status_failed;
    }

    int operator()(const card_command_t& command) const { return run_card(program_, command); }

    int operator()(const look_command_t& command) const { return run_look(program_, command); }

  private:
    const char* program_;
};

}  // namespace

int run_command(const char* program, const command_t& command) {
    return std::visit(runner_t(program), command);
}

}  // namespace talomake
