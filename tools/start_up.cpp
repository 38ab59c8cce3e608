#include "tools/start_up.h"

#include <tuple>

#include "album/jobs.h"
#include "album/write_lock.h"
#include "libutils/diagnostics.h"
#include "libutils/files/system_path.h"
#include "libutils/text/text.h"
#include "programs/program_path.h"
#include "settings/settings.h"
#include "settings/settings_file.h"
#include "shooting_data/exif_summary.h"
#include "talolib/message.h"
#include "talolib/option.h"
#include "tools/commands.h"

namespace talomake {

using namespace taloram;

namespace {

// One line for each place that is waited for; waiting ends when the user ends the program.
bool wait_for_writer(const std::string& directory) {
    static std::string told;
    if (told != directory) {
        told = directory;
        libutils::report(libutils::printable(directory), ": another program writes there; waiting for its end.");
    }
    return true;
}

}  // namespace

void start_up(const char* program, const run_options_t& options) {
    const std::string directory = libutils::directory_part(programs::program_path(program, program_name));
    const std::string catalogue = talolib::init_message(directory.c_str(), program_name);
    // Without a settings file the defaults stand.
    std::ignore = loadini(libutils::directory_part(catalogue).c_str(), program_name);
    if (options.shrink_size) {
        g_global.shrink_width = options.shrink_size->width;
        g_global.shrink_height = options.shrink_size->height;
    }
    if (options.quality) {
        g_global.jpeg_compress = *options.quality;
    }
    g_workers.jobs = options.jobs.value_or(default_jobs());
    if (options.trace) {
        talolib::g_option[talolib::option_trace] = 1;
    }
    initexif(directory.c_str(), program_name);
    g_wait_for_writer = wait_for_writer;
}

shown_progress_t::shown_progress_t(progress_mode_t mode) : line_(mode) {
    for (const stage_t stage : all_stages) {
        signals.of(stage).connect([this, stage](double fraction) { line_.step(stage, fraction); });
    }
}

}  // namespace talomake
