#include "widgets/folder_drop.h"

#include <giomm/file.h>
#include <gtkmm/selectiondata.h>

namespace taloram {

namespace {

// "" when the first of what was dropped lies nowhere.
std::string folder_of(const Gtk::SelectionData& data) {
    for (const Glib::ustring& uri : data.get_uris()) {
        const Glib::RefPtr<Gio::File> file = Gio::File::create_for_uri(uri);
        const bool is_folder = file->query_file_type() == Gio::FILE_TYPE_DIRECTORY;
        const Glib::RefPtr<Gio::File> folder = is_folder ? file : file->get_parent();
        return folder ? folder->get_path() : std::string();
    }
    return {};
}

}  // namespace

void accept_folder(Gtk::Widget& widget, const std::function<void(const std::string& path)>& dropped) {
    widget.drag_dest_set({}, Gtk::DEST_DEFAULT_ALL, Gdk::ACTION_COPY);
    widget.drag_dest_add_uri_targets();
    widget.signal_drag_data_received().connect([dropped](const Glib::RefPtr<Gdk::DragContext>& /*context*/, int /*x*/,
                                                         int /*y*/, const Gtk::SelectionData& data, guint /*info*/,
                                                         guint /*time*/) {
        const std::string folder = folder_of(data);
        if (!folder.empty()) {
            dropped(folder);
        }
    });
}

}  // namespace taloram
