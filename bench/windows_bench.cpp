#include <gtkmm/main.h>
#include <gtkmm/window.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "album/album_layout.h"
#include "album/texts/comment_store.h"
#include "app/menu_window.h"
#include "bench/scratch_directory.h"
#include "dialogs/edit_album_dialog.h"
#include "dialogs/edit_book_dialog.h"
#include "dialogs/make_album_dialog.h"
#include "dialogs/view_album_dialog.h"
#include "dialogs/view_book_dialog.h"
#include "libutils/diagnostics.h"
#include "settings/settings.h"
#include "settings/settings_file.h"
#include "toolkit/display.h"

// windows_bench [<window> [<count>]]: opens a window over <count> photographs, for "books" the three windows over a
// book of <count> albums, and closes it. Prints a line a window: the seconds until it is drawn, until nothing is left
// to do, and until it is closed, and the process's largest memory in KiB, which one window at a time tells for itself.
namespace {

using seconds_t = std::chrono::duration<double>;
using clock_type = std::chrono::steady_clock;
namespace fs = std::filesystem;

// An album whose photographs are one file under many names.
void make_album(const fs::path& album, size_t count) {
    for (const char* directory : {"original", "thumb", "size0", "txt"}) {
        fs::create_directories(album / directory);
    }
    const test_support::blob_t photo = test_support::make_camera_jpeg({.width = 640, .height = 480}, 1, true);
    const test_support::blob_t thumb = test_support::make_jpeg({.width = 160, .height = 120});
    test_support::write_file(album / "photo", photo);
    test_support::write_file(album / "small", thumb);
    for (size_t i = 0; i < count; ++i) {
        const std::string name = "P" + std::to_string(100000 + i) + ".JPG";
        fs::create_hard_link(album / "photo", album / "original" / name);
        fs::create_hard_link(album / "photo", album / "size0" / name);
        fs::create_hard_link(album / "small", album / "thumb" / name);
    }
}

// A book of small albums.
bool make_book(const fs::path& book, size_t count) {
    bool is_made = true;
    for (size_t i = 0; i < count; ++i) {
        const fs::path album = book / ("A" + std::to_string(100000 + i));
        fs::create_directories(album / "original");
        is_made = taloram::savecommenttxt(album, "Album " + std::to_string(i), "A day\r\n", "") && is_made;
        test_support::write_file(album / "txt" / "count.txt", std::string("0+12\n"));
    }
    return is_made;
}

void settle() {
    while (Gtk::Main::events_pending()) {
        Gtk::Main::iteration(false);
    }
}

// The most that the process ever had in memory, in KiB.
unsigned long largest_memory() {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word && word != "VmHWM:") {
    }
    unsigned long size = 0;
    status >> size;
    return size;
}

double since(clock_type::time_point start) {
    return seconds_t(clock_type::now() - start).count();
}

template <class make_t>
void measure(const char* what, const make_t& make) {
    auto start = clock_type::now();
    auto window = make();
    bool drawn = false;
    window->signal_draw().connect([&drawn](const Cairo::RefPtr<Cairo::Context>& /*context*/) {
        drawn = true;
        return false;
    });
    window->show();
    while (!drawn) {
        Gtk::Main::iteration(true);
    }
    const double opened = since(start);
    settle();
    const double settled = since(start);
    start = clock_type::now();
    window.reset();
    settle();
    std::printf("%-14s drawn %7.3f s, settled %7.3f s, closed %7.3f s, memory %7lu KiB\n", what, opened, settled,
                since(start), largest_memory());
}

bool is_asked(const std::string& only, const char* what) {
    return only.empty() || only == what;
}

void measure_photographs(const std::string& only, const std::string& place, size_t count) {
    Gtk::Window parent;
    const std::string album = taloram::entry_path(place, "album");
    make_album(album, count);
    if (is_asked(only, "maker")) {
        const std::string source = taloram::entry_path(album, taloram::layout::original);
        measure("maker", [&] { return std::make_unique<taloram::MakeAlbumDialog>(parent, source, place); });
    }
    if (is_asked(only, "editor")) {
        measure("editor", [&] { return std::make_unique<taloram::EditAlbumDialog>(parent, album); });
    }
    if (is_asked(only, "viewer")) {
        measure("viewer", [&] { return std::make_unique<taloram::ViewAlbumDialog>(parent, album, ""); });
    }
}

bool measure_books(const std::string& place, const std::string& program, size_t count) {
    Gtk::Window parent;
    const std::string book = taloram::entry_path(place, "book");
    setenv("HOME", place.c_str(), 1);
    taloram::g_global.album = book;
    taloram::saveini("", "taloram");
    std::string name = taloram::entry_path(fs::path(program).parent_path(), "taloram");
    char* arguments[] = {name.data(), nullptr};
    if (!make_book(book, count)) {
        return false;
    }
    measure("main-window", [&] { return std::make_unique<taloram::MenuWindow>(1, arguments); });
    measure("book-editor", [&] { return std::make_unique<taloram::EditBookDialog>(parent, book); });
    measure("book-viewer", [&] { return std::make_unique<taloram::ViewBookDialog>(parent, book, ""); });
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (!taloram::open_display(argc, argv)) {
        libutils::report("windows_bench: can't open a display.");
        return 1;
    }
    Gtk::Main toolkit(argc, argv);
    const std::string only = argc > 1 ? argv[1] : "";
    const size_t asked = argc > 2 ? std::stoul(argv[2]) : 0;
    const bench::scratch_directory_t directory;
    if (only != "books") {
        measure_photographs(only, directory.path(), asked == 0 ? 5000 : asked);
    }
    if (is_asked(only, "books") && !measure_books(directory.path(), argv[0], asked == 0 ? 2000 : asked)) {
        return 1;
    }
    return 0;
}
