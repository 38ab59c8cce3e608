#include "widgets/removal.h"

#include <giomm/file.h>

#include "album/shell_command.h"
#include "libutils/files/system_path.h"
#include "toolkit/text_encoding.h"
#include "widgets/message_box.h"

namespace taloram {

namespace {

// Moves a directory, or a link to one, to the desktop's trash; why that was not possible, "" when it is there.
Glib::ustring move_to_trash(const std::string& directory) {
    try {
        Gio::File::create_for_path(directory)->trash();
        return {};
    } catch (const Glib::Error& error) {
        return error.what();
    }
}

}  // namespace

bool ask_and_remove(Gtk::Window& parent, const std::string& directory) {
    const Glib::ustring name = to_toolkit(libutils::last_component(directory));
    for (;;) {
        switch (ask_to_remove(parent, msg_remove, name + "\n" + message_text(msg_removes_photos))) {
            case removal_t::none:
                return false;
            case removal_t::for_good:
                if (!remove_tree(directory)) {
                    show_error(parent, message_text(msg_remove_failed) + "\n" + to_toolkit(directory));
                }
                return true;
            case removal_t::to_trash:
                break;
        }
        const Glib::ustring failure = move_to_trash(directory);
        if (failure.empty()) {
            return true;
        }
        show_error(parent, message_text(msg_no_trash) + "\n" + failure);
    }
}

}  // namespace taloram
