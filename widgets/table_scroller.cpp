#include "widgets/table_scroller.h"

#include <glibmm/main.h>
#include <gtkmm/bin.h>
#include <gtkmm/cssprovider.h>

#include <algorithm>

namespace taloram {

namespace {

constexpr int frame_width = 16;   // pixels that a window manager's frame may take
constexpr int frame_height = 48;  // with the title bar

struct extent_t {
    int width = 0;   // pixels
    int height = 0;  // pixels
};

// The monitor's part that panels leave free.
extent_t work_area(Gtk::Window& window) {
    const Glib::RefPtr<Gdk::Screen> screen = window.get_screen();
    const Glib::RefPtr<Gdk::Window> surface = window.get_window();
    const int monitor = surface ? screen->get_monitor_at_window(surface) : 0;
    Gdk::Rectangle area;
    gdk_screen_get_monitor_workarea(screen->gobj(), monitor, area.gobj());
    return {std::min(area.get_width(), screen->get_width()), area.get_height()};
}

extent_t natural_size(Gtk::Widget& widget) {
    Gtk::Requisition least;
    Gtk::Requisition natural;
    widget.get_preferred_size(least, natural);
    return {natural.width, natural.height};
}

// A table is stretched over a larger window. Following that, the window could never be made smaller again. The viewport
// that the toolkit puts around it has a border.
extent_t wanted(Gtk::ScrolledWindow& scroller, const Gdk::Rectangle& table) {
    auto* viewport = dynamic_cast<Gtk::Bin*>(scroller.get_child());
    if (viewport == nullptr || viewport->get_child() == nullptr) {
        return {table.get_width(), table.get_height()};
    }
    const extent_t content = natural_size(*viewport->get_child());
    const extent_t whole = natural_size(*viewport);
    return {std::min(table.get_width(), content.width) + whole.width - content.width,
            std::min(table.get_height(), content.height) + whole.height - content.height};
}

// What the window's other widgets need at least.
int height_of_others(Gtk::ScrolledWindow& scroller, Gtk::Window& window) {
    int natural = 0;
    int whole = 0;
    int own = 0;
    window.get_preferred_height(whole, natural);
    scroller.get_preferred_height(own, natural);
    return std::max(whole - own, 0);
}

}  // namespace

void follow_table(Gtk::ScrolledWindow& scroller, Gtk::Window& window, const Gdk::Rectangle& table, int max_height) {
    if (table.get_height() <= 0) {
        return;
    }
    const extent_t screen = work_area(window);
    const extent_t size = wanted(scroller, table);
    const int room = std::max(screen.height - frame_height - height_of_others(scroller, window), 1);
    const extent_t request{std::min(size.width, std::max(screen.width - frame_width, 1)),
                           std::min({size.height, max_height, room})};
    // What is asked for while sizes are being given out is forgotten.
    Glib::signal_idle().connect_once(
        sigc::track_obj([&scroller, request] { scroller.set_size_request(request.width, request.height); }, scroller),
        Glib::PRIORITY_HIGH_IDLE);
}

int width_of(const Glib::ustring& text) {
    int width = 0;
    for (const gunichar character : text) {
        width += g_unichar_iswide(character) != FALSE ? 2 : 1;
    }
    return width;
}

void set_short_text(Gtk::Label& label, const Glib::ustring& text, int widest_characters) {
    label.set_text(text);
    label.set_single_line_mode(true);
    label.set_ellipsize(Pango::ELLIPSIZE_END);
    label.set_max_width_chars(widest_characters);
    // A table gives its columns what they need at least, and an ellipsis alone would need little.
    label.set_width_chars(std::min({width_of(text), widest_characters, readable_characters}));
    label.set_xalign(0);
    label.set_tooltip_text(text);
}

Gtk::ScrolledWindow& plain_text(Gtk::TextView& view, int height) {
    view.set_editable(false);
    view.set_cursor_visible(false);
    view.set_wrap_mode(Gtk::WRAP_WORD_CHAR);
    view.set_accepts_tab(false);
    const Glib::RefPtr<Gtk::CssProvider> paper = Gtk::CssProvider::create();
    paper->load_from_data("textview, textview text { background: none; }");
    view.get_style_context()->add_provider(paper, GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    auto* frame = Gtk::manage(new Gtk::ScrolledWindow);
    frame->set_policy(Gtk::POLICY_NEVER, Gtk::POLICY_AUTOMATIC);
    frame->set_propagate_natural_height(true);
    frame->set_max_content_height(height);
    frame->add(view);
    view.show();
    // Without a text there is no line to look at, and nothing to stop at with the keyboard.
    frame->set_no_show_all();
    view.get_buffer()->signal_changed().connect(
        [&view, frame] { frame->set_visible(view.get_buffer()->get_char_count() > 0); });
    return *frame;
}

Gtk::Widget& framed_text(Gtk::TextView& view, int height) {
    view.set_wrap_mode(Gtk::WRAP_WORD_CHAR);
    view.set_accepts_tab(false);
    auto* frame = Gtk::manage(new Gtk::ScrolledWindow);
    frame->set_policy(Gtk::POLICY_AUTOMATIC, Gtk::POLICY_AUTOMATIC);
    frame->set_shadow_type(Gtk::SHADOW_IN);
    frame->set_min_content_height(height);
    frame->add(view);
    return *frame;
}

}  // namespace taloram
