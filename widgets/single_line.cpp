#include "widgets/single_line.h"

#include <gtk/gtk.h>

#include <string>

namespace taloram {

namespace {

// In place of the text that is about to be inserted, the same without line ends.
void insert_one_line(GtkEditable* entry, const gchar* text, gint length, gint* position, gpointer /*data*/) {
    const std::string inserted = length < 0 ? std::string(text) : std::string(text, static_cast<size_t>(length));
    if (inserted.find_first_of("\r\n") == std::string::npos) {
        return;
    }
    const std::string line = on_one_line(inserted).raw();
    gtk_editable_insert_text(entry, line.data(), static_cast<gint>(line.size()), position);
    g_signal_stop_emission_by_name(entry, "insert-text");
}

}  // namespace

Glib::ustring on_one_line(const Glib::ustring& text) {
    std::string line;
    const std::string& raw = text.raw();
    for (size_t i = 0; i < raw.size(); ++i) {
        const bool is_end = raw[i] == '\r' || raw[i] == '\n';
        line += is_end ? ' ' : raw[i];
        i += raw[i] == '\r' && i + 1 < raw.size() && raw[i + 1] == '\n' ? 1 : 0;
    }
    return line;
}

void keep_on_one_line(Gtk::Entry& entry) {
    g_signal_connect(entry.gobj(), "insert-text", G_CALLBACK(&insert_one_line), nullptr);
}

}  // namespace taloram
