#include <gtkmm/main.h>

#include <algorithm>
#include <iostream>
#include <list>
#include <string>

#include "album/album_layout.h"
#include "album/sizes/reduced_sizes.h"
#include "libutils/diagnostics.h"
#include "libutils/files/directory.h"
#include "libutils/process/memory.h"
#include "widgets/thumbnails.h"

// steps turn <from> <to>      turns every photograph of a directory a quarter clockwise, into another one
// steps previews <directory>  loads the previews of all photographs of a directory
namespace {

using names_t = std::list<std::string>;

bool turn_all(const std::string& from, const names_t& names, const std::string& to) {
    libutils::mkdir(to.c_str());
    return std::all_of(names.begin(), names.end(), [&](const std::string& name) {
        return taloram::rotatejpeg(taloram::entry_path(from, name), taloram::entry_path(to, name), 1);
    });
}

bool load_all_previews(const std::string& from, const names_t& names) {
    Gtk::Main::init_gtkmm_internals();  // needs no display
    return std::all_of(names.begin(), names.end(), [&](const std::string& name) {
        libgr::image2d_t image;
        return taloram::load_thumbnail(image, taloram::entry_path(from, name)) && taloram::convert_to_pixbuf(image);
    });
}

}  // namespace

int main(int argc, char** argv) {
    libutils::keep_freed_memory();
    const std::string step = argc > 2 ? argv[1] : "";
    names_t names;
    if (!libutils::getfiles(names, argc > 2 ? argv[2] : "")) {
        names.clear();
    }
    names.remove_if([](const std::string& name) { return !taloram::is_photo(name); });
    if (names.empty() || !((step == "turn" && argc == 4) || (step == "previews" && argc == 3))) {
        libutils::report("usage: steps turn <from> <to> | steps previews <directory>");
        return 2;
    }
    return (step == "turn" ? turn_all(argv[2], names, argv[3]) : load_all_previews(argv[2], names)) ? 0 : 1;
}
