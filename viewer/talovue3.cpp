#include <gtkmm/main.h>
#include <gtkmm/window.h>

#include "libutils/diagnostics.h"
#include "libutils/files/system_path.h"
#include "programs/program.h"
#include "programs/program_path.h"
#include "shooting_data/exif_summary.h"
#include "talolib/message.h"
#include "toolkit/display.h"
#include "viewer/command_line.h"
#include "viewer/viewer_window.h"

namespace {

int show(int argc, char** argv, const talovue::command_line_t& line, talovue::picture_list_t list) {
    if (!taloram::open_display(argc, argv)) {
        libutils::report("talovue3: can't open a display; windows need one.");
        return programs::status_failed;
    }
    Gtk::Main toolkit(argc, argv);
    Gtk::Window::set_default_icon_name("talovue3");
    const std::string directory = libutils::directory_part(programs::program_path(argv[0], "taloram"));
    static_cast<void>(talolib::init_message(directory.c_str(), "taloram"));
    taloram::initexif(directory.c_str(), "taloram");
    talovue::viewer_window_t window(std::move(list));
    if (line.full_screen) {
        window.fullscreen();
    }
    if (line.slide_seconds) {
        window.start_slide_show(*line.slide_seconds);
    }
    Gtk::Main::run(window);
    return programs::status_done;
}

// The command line is looked at without a display, so that help is to be had everywhere.
int run(int argc, char** argv) {
    int status = programs::status_done;
    const auto line = talovue::parse_command_line(argc, argv, status);
    if (!line) {
        return status;
    }
    talovue::picture_list_t list;
    if (std::string problem; !talovue::list_pictures(list, line->paths, problem)) {
        programs::report_wrong_use("talovue3", problem);
        return programs::status_wrong_use;
    }
    // What is left is the program's name; the toolkit has options of its own, and ours are taken.
    return show(1, argv, *line, std::move(list));
}

}  // namespace

int main(int argc, char** argv) {
    return programs::run_program("talovue3", argc, argv, run);
}
