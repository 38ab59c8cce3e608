#include <gtk/gtk.h>
#include <gtkmm/main.h>
#include <gtkmm/window.h>

#include "album/jobs.h"
#include "album/write_lock.h"
#include "app/command_line.h"
#include "app/menu_window.h"
#include "libutils/diagnostics.h"
#include "libutils/files/path.h"
#include "programs/program.h"
#include "programs/program_path.h"
#include "toolkit/display.h"
#include "widgets/writer_box.h"

namespace {

constexpr const char* input_method_cache = "/usr/local/lib/gtk-3.0/3.0.0/immodules.cache";

int run(int argc, char** argv) {
    // The command line is looked at without a display, so that help is to be had everywhere.
    gtk_parse_args(&argc, &argv);
    if (argc < 1 || taloram::parse_command_line(argc, argv).wants_usage) {
        taloram::usage(argc < 1 ? "taloram" : argv[0]);
        return programs::status_done;
    }
    if (!taloram::open_display(argc, argv)) {
        libutils::report(argv[0], ": can't open a display; windows need one.");
        return programs::status_failed;
    }
    Gtk::Main toolkit(argc, argv);
    if (g_file_test(input_method_cache, G_FILE_TEST_EXISTS) != FALSE) {
        g_setenv("GTK_IM_MODULE_FILE", input_method_cache, TRUE);
    }
    taloram::g_workers.jobs = taloram::default_jobs();
    taloram::g_wait_for_writer = taloram::wait_for_writer;
    Gtk::Window::set_default_icon_name("taloram");
    std::string program = programs::program_path(argv[0], libutils::basename(std::string(argv[0])));
    argv[0] = program.data();
    taloram::MenuWindow window(argc, argv);
    Gtk::Main::run(window);
    return programs::status_done;
}

}  // namespace

int main(int argc, char** argv) {
    return programs::run_program("taloram", argc, argv, run);
}
