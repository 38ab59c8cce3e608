#include <gtkmm/main.h>
#include <gtkmm/window.h>

#include <csignal>
#include <exception>
#include <iostream>

#include "libutils/diagnostics.h"
#include "libutils/program.h"
#include "libutils/system_path.h"
#include "shooting_data/exif_summary.h"
#include "talolib/message.h"
#include "talolib/program_path.h"
#include "toolkit/display.h"
#include "viewer/command_line.h"
#include "viewer/viewer_window.h"

namespace {

int show(int argc, char** argv, const talovue::command_line_t& line, talovue::picture_list_t list) {
    if (!taloram::open_display(argc, argv)) {
        libutils::report("talovue3: can't open a display; windows need one.");
        return talovue::status_failed;
    }
    Gtk::Main toolkit(argc, argv);
    Gtk::Window::set_default_icon_name("talovue3");
    const std::string directory = libutils::directory_part(talolib::program_path(argv[0], "taloram"));
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
    return talovue::status_done;
}

// The command line is looked at without a display, so that help is to be had everywhere.
int run(int argc, char** argv) {
    int status = talovue::status_done;
    const auto line = talovue::parse_command_line(argc, argv, status);
    if (!line) {
        return status;
    }
    talovue::picture_list_t list;
    if (std::string problem; !talovue::list_pictures(list, line->paths, problem)) {
        talovue::report_wrong_use(problem);
        return talovue::status_wrong_use;
    }
    // What is left is the program's name; the toolkit has options of its own, and ours are taken.
    return show(1, argv, *line, std::move(list));
}

}  // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    libutils::hold_standard_descriptors();
    int status = talovue::status_failed;
    try {
        status = run(argc, argv);
    } catch (const std::exception& failure) {
        libutils::report("talovue3: ", failure.what());
    } catch (const Glib::Exception& failure) {
        libutils::report("talovue3: ", failure.what().raw());
    }
    if (!std::cout.flush() && status == talovue::status_done) {
        libutils::report("talovue3: can't write to standard output.");
        status = talovue::status_failed;
    }
    return status;
}
