#include <gtk/gtk.h>
#include <gtkmm/main.h>
#include <gtkmm/window.h>

#include <csignal>
#include <cstdlib>

#include "album/jobs.h"
#include "album/write_lock.h"
#include "app/command_line.h"
#include "app/menu_window.h"
#include "dialogs/writer_box.h"
#include "libutils/diagnostics.h"
#include "libutils/path.h"
#include "libutils/program.h"
#include "talolib/program_path.h"
#include "toolkit/display.h"

namespace {

constexpr const char* input_method_cache = "/usr/local/lib/gtk-3.0/3.0.0/immodules.cache";

}  // namespace

int main(int argc, char** argv) {
    libutils::hold_standard_descriptors();
    // A file that grew too large is a failed write, not the end in the middle of an import.
    std::signal(SIGXFSZ, SIG_IGN);
    // The command line is looked at without a display, so that help is to be had everywhere.
    gtk_parse_args(&argc, &argv);
    if (argc < 1 || taloram::parse_command_line(argc, argv).wants_usage) {
        taloram::usage(argc < 1 ? "taloram" : argv[0]);
        return EXIT_SUCCESS;
    }
    if (!taloram::open_display(argc, argv)) {
        libutils::report(argv[0], ": can't open a display; windows need one.");
        return EXIT_FAILURE;
    }
    Gtk::Main toolkit(argc, argv);
    if (g_file_test(input_method_cache, G_FILE_TEST_EXISTS) != FALSE) {
        g_setenv("GTK_IM_MODULE_FILE", input_method_cache, TRUE);
    }
    taloram::g_workers.jobs = taloram::default_jobs();
    taloram::g_wait_for_writer = taloram::wait_for_writer;
    Gtk::Window::set_default_icon_name("taloram");
    std::string program = talolib::program_path(argv[0], libutils::basename(std::string(argv[0])));
    argv[0] = program.data();
    taloram::MenuWindow window(argc, argv);
    Gtk::Main::run(window);
    return EXIT_SUCCESS;
}
