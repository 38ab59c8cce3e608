#include "dialogs/photo_grid.h"

#include <gtk/gtk.h>

#include <algorithm>

#include "dialogs/thumbnails.h"
#include "libgr/image/pixel_operations.h"
#include "libutils/diagnostics.h"
#include "settings/settings.h"
#include "toolkit/text_encoding.h"

namespace taloram {

namespace {

constexpr int quarter = 90;        // degrees
constexpr int widest_angle = 270;  // degrees
constexpr size_t largest_table = 65535;

// The wheel is for scrolling through the photographs: over a spinner it would turn one of them by accident.
bool pass_to_scroller(GdkEventScroll* event, Gtk::Widget* spinner) {
    if (Gtk::Container* table = spinner->get_parent()) {
        gtk_propagate_event(GTK_WIDGET(table->gobj()), reinterpret_cast<GdkEvent*>(event));
    }
    return true;
}

}  // namespace

photo_cell_t::photo_cell_t() {
    rotation.set_range(0, widest_angle);
    rotation.set_increments(quarter, quarter);
    rotation.set_digits(0);
    rotation.set_wrap(false);
    rotation.set_value(0);
    rotation.set_can_focus(false);
    rotation.set_tooltip_text(message_text(msg_rotation));
    rotation.get_accessible()->set_name(message_text(msg_rotation));
    rotation.signal_scroll_event().connect(sigc::bind(sigc::ptr_fun(&pass_to_scroller), &rotation), false);
}

bool photo_cell_t::show_turned() {
    libgr::image2d_t turned;
    if (!libgr::rotate(quarter_turns().value_or(0), turned, preview)) {
        libutils::report(name, ": rotate() failed.");
        return false;
    }
    const Glib::RefPtr<Gdk::Pixbuf> pixels = convert_to_pixbuf(turned);
    if (pixels) {
        picture.set(pixels);
    } else {
        picture.clear();
    }
    return true;
}

std::optional<unsigned long> photo_cell_t::quarter_turns() const {
    const int angle = rotation.get_value_as_int();
    if (angle < 0 || angle > widest_angle || angle % quarter != 0) {
        libutils::report(name, ": ", angle, ": not 90/180/270.");
        return std::nullopt;
    }
    return static_cast<unsigned long>(angle / quarter);
}

files_t photo_cell_t::chosen() const {
    return {name, quarter_turns().value_or(0)};
}

size_t photos_in_row() {
    return static_cast<size_t>(std::max<uint64_t>(g_global.horizontal_items, 1));
}

void resize_grid(Gtk::Table& table, size_t count, guint rows) {
    // Only a start, and not a full one: the table grows with what is attached to it.
    const size_t in_row = photos_in_row();
    table.resize(static_cast<guint>(std::min(count % in_row + 1, largest_table)),
                 static_cast<guint>(std::min(rows * (count / in_row) + rows, largest_table)));
}

void attach_to_grid(Gtk::Table& table, Gtk::Widget& widget, size_t index, guint row, guint rows) {
    const auto column = static_cast<guint>(index % photos_in_row());
    const auto top = static_cast<guint>(index / photos_in_row()) * rows + row;
    table.attach(widget, column, column + 1, top, top + 1);
}

}  // namespace taloram
