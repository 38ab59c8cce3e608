#include "widgets/browser.h"

#include <giomm/appinfo.h>
#include <giomm/file.h>

#include "album/album_layout.h"
#include "album/shell_command.h"
#include "toolkit/text_encoding.h"
#include "widgets/message_box.h"

namespace taloram {

namespace {

bool launch_default(const std::string& path) {
    try {
        return is_exist(path) && Gio::AppInfo::launch_default_for_uri(Gio::File::create_for_path(path)->get_uri());
    } catch (const Glib::Error&) {
        return false;
    }
}

}  // namespace

void open_in_browser(Gtk::Window& parent, const std::string& page) {
    if (!open_in_safari(page)) {
        open_with_desktop(parent, page);
    }
}

void open_with_desktop(Gtk::Window& parent, const std::string& path) {
    if (!launch_default(path)) {
        show_error(parent, message_text(msg_not_opened) + "\n" + to_toolkit(path));
    }
}

}  // namespace taloram
