#include "widgets/photo_grid.h"

#include <gdkmm/general.h>
#include <gtk/gtk.h>

#include <algorithm>
#include <numbers>

#include "libgr/image/pixel_operations.h"
#include "libutils/diagnostics.h"
#include "settings/settings.h"
#include "toolkit/text_encoding.h"
#include "widgets/thumbnails.h"

namespace taloram {

namespace {

constexpr int quarter = 90;        // degrees
constexpr int widest_angle = 270;  // degrees
constexpr int longest_side = 192;  // pixels; five photographs in a row fit on a small screen

// The wheel is for scrolling through the photographs: over a spinner it would turn one of them by accident.
bool pass_to_scroller(GdkEventScroll* event, Gtk::Widget* spinner) {
    if (Gtk::Container* table = spinner->get_parent()) {
        gtk_propagate_event(GTK_WIDGET(table->gobj()), reinterpret_cast<GdkEvent*>(event));
    }
    return true;
}

// The mark's middle is the origin; it is drawn in a colour of the theme, on any picture, so both have white borders.
void draw_check_mark(const Cairo::RefPtr<Cairo::Context>& cr, const Gdk::RGBA& colour) {
    constexpr double radius = 13;  // pixels
    cr->arc(0, 0, radius, 0, 2 * std::numbers::pi);
    Gdk::Cairo::set_source_rgba(cr, colour);
    cr->fill_preserve();
    cr->set_source_rgb(1, 1, 1);
    cr->set_line_width(2);
    cr->stroke();
    cr->move_to(-6, 0.5);
    cr->line_to(-1.5, 5);
    cr->line_to(6, -4.5);
    cr->set_line_width(3);
    cr->stroke();
}

}  // namespace

std::optional<unsigned long> photo_choice_t::quarter_turns() const {
    if (angle < 0 || angle > widest_angle || angle % quarter != 0) {
        libutils::report(name, ": ", angle, ": not 90/180/270.");
        return std::nullopt;
    }
    return static_cast<unsigned long>(angle / quarter);
}

files_t photo_choice_t::chosen() const {
    return {name, quarter_turns().value_or(0)};
}

photo_cell_t::photo_cell_t(const photo_choice_t& choice) {
    rotation.set_range(0, widest_angle);
    rotation.set_increments(quarter, quarter);
    rotation.set_digits(0);
    rotation.set_wrap(false);
    rotation.set_value(choice.angle);
    rotation.set_can_focus(false);
    rotation.set_tooltip_text(message_text(msg_rotation));
    rotation.get_accessible()->set_name(message_text(msg_rotation));
    rotation.signal_scroll_event().connect(sigc::bind(sigc::ptr_fun(&pass_to_scroller), &rotation), false);
}

bool photo_cell_t::show_turned(const libgr::image2d_t& image, unsigned long count, const std::string& name) {
    libgr::image2d_t turned;
    if (!libgr::rotate(count, turned, image)) {
        libutils::report(name, ": rotate() failed.");
        return false;
    }
    const Glib::RefPtr<Gdk::Pixbuf> pixels = convert_to_pixbuf(turned);
    if (pixels) {
        picture.set(fit_into(pixels, longest_side, longest_side));
    } else {
        picture.clear();
    }
    return true;
}

bool choice_button_t::on_draw(const Cairo::RefPtr<Cairo::Context>& cr) {
    const bool handled = Gtk::ToggleButton::on_draw(cr);
    if (get_active()) {
        constexpr double frame = 4;    // pixels
        constexpr double corner = 20;  // pixels from the sides to the mark's middle
        Gdk::RGBA colour("#3584e4");
        static_cast<void>(get_style_context()->lookup_color("theme_selected_bg_color", colour));
        const double width = get_allocated_width();
        const double height = get_allocated_height();
        Gdk::Cairo::set_source_rgba(cr, colour);
        cr->set_line_width(frame);
        cr->rectangle(frame / 2, frame / 2, width - frame, height - frame);
        cr->stroke();
        // The colour of a dark theme is dark, too.
        cr->set_source_rgb(1, 1, 1);
        cr->set_line_width(1);
        cr->rectangle(frame + 0.5, frame + 0.5, width - 2 * frame - 1, height - 2 * frame - 1);
        cr->stroke();
        if (has_visible_focus()) {
            // The frame covers the toolkit's own.
            constexpr double inset = frame + 3;
            get_style_context()->render_focus(cr, inset, inset, width - 2 * inset, height - 2 * inset);
        }
        cr->translate(get_direction() == Gtk::TEXT_DIR_RTL ? corner : width - corner, corner);
        draw_check_mark(cr, colour);
    }
    return handled;
}

size_t photos_in_row() {
    return static_cast<size_t>(std::max<uint64_t>(g_global.horizontal_items, 1));
}

}  // namespace taloram
