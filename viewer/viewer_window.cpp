#include "viewer/viewer_window.h"

#include <gdk/gdkkeysyms.h>
#include <glibmm/convert.h>
#include <glibmm/main.h>
#include <glibmm/markup.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "libutils/diagnostics.h"
#include "programs/program.h"
#include "toolkit/display.h"
#include "toolkit/text_encoding.h"

namespace talovue {

namespace {

using taloram::message_text;
using taloram::to_toolkit;

constexpr double default_slide_seconds = 5;
constexpr double pan_step = 80;  // pixels
constexpr int gap = 12;          // pixels
constexpr int widest_info = 60;  // characters

Glib::ustring joined(const std::vector<Glib::ustring>& parts, const char* separator) {
    Glib::ustring text;
    for (const Glib::ustring& part : parts) {
        text += (text.empty() || part.empty() ? "" : separator) + part;
    }
    return text;
}

Glib::ustring size_text(const picture_view_t::facts_t& facts) {
    return libutils::join_text(std::lround(facts.width), " \xC3\x97 ", std::lround(facts.height));
}

Glib::ustring bytes_text(uint64_t bytes) {
    char* const text = g_format_size(bytes);
    const Glib::ustring copy = text;
    g_free(text);
    return copy;
}

}  // namespace

viewer_window_t::viewer_window_t(picture_list_t list) : slide_seconds_(default_slide_seconds) {
    info_.set_halign(Gtk::ALIGN_START);
    info_.set_valign(Gtk::ALIGN_END);
    info_.set_xalign(0);
    info_.set_line_wrap();
    info_.set_line_wrap_mode(Pango::WRAP_WORD_CHAR);
    info_.set_max_width_chars(widest_info);
    info_.property_margin() = gap;
    info_.get_style_context()->add_class("osd");
    info_.set_padding(gap, gap);
    info_.set_no_show_all();
    overlay_.add(view_);
    overlay_.add_overlay(info_);
    overlay_.set_overlay_pass_through(info_);
    add(overlay_);
    overlay_.show_all();

    const Gdk::Rectangle area = taloram::work_area(*this);
    set_default_size(area.get_width() * 3 / 4, area.get_height() * 3 / 4);
    drag_dest_set({}, Gtk::DEST_DEFAULT_ALL, Gdk::ACTION_COPY);
    drag_dest_add_uri_targets();
    view_.signal_changed().connect(sigc::mem_fun(*this, &viewer_window_t::refresh));
    view_.set_pictures(std::move(list.pictures), list.first);
    view_.grab_focus();
}

void viewer_window_t::refresh() {
    set_title(title());
    if (info_.get_visible()) {
        refresh_info();
    }
}

Glib::ustring viewer_window_t::title() const {
    if (view_.count() == 0) {
        return message_text(taloram::msg_viewer);
    }
    std::vector<Glib::ustring> parts = {to_toolkit(view_.name()),
                                        libutils::join_text(view_.index() + 1, " / ", view_.count())};
    const picture_view_t::facts_t facts = view_.facts();
    if (facts.known && facts.failure.empty()) {
        parts.push_back(size_text(facts));
        parts.push_back(libutils::join_text(std::max(1L, std::lround(100 * view_.zoom())), " %"));
    }
    if (slide_show_.connected()) {
        parts.push_back(message_text(taloram::msg_slide_show));
    }
    return joined(parts, " - ");
}

void viewer_window_t::refresh_info() {
    if (view_.count() == 0) {
        info_.set_text(message_text(taloram::msg_no_pictures));
        return;
    }
    const picture_view_t::facts_t facts = view_.facts();
    const Glib::ustring name = to_toolkit(view_.name());
    std::vector<Glib::ustring> lines = {"<b>" + Glib::Markup::escape_text(name) + "</b>"};
    if (!facts.failure.empty()) {
        lines.push_back(Glib::Markup::escape_text(to_toolkit(facts.failure)));
    } else if (facts.known) {
        lines.push_back(Glib::Markup::escape_text(size_text(facts) + ", " + bytes_text(facts.file_bytes)));
        if (facts.damaged) {
            lines.push_back(Glib::Markup::escape_text(message_text(taloram::msg_photo_damaged)));
        }
        lines.push_back(Glib::Markup::escape_text(to_toolkit(facts.summary)));
    }
    info_.set_markup(joined(lines, "\n"));
}

void viewer_window_t::toggle_full_screen() {
    if (full_screen_) {
        unfullscreen();
    } else {
        fullscreen();
    }
}

// The window manager decides whether and when the window covers the screen.
bool viewer_window_t::on_window_state_event(GdkEventWindowState* event) {
    full_screen_ = (event->new_window_state & GDK_WINDOW_STATE_FULLSCREEN) != 0;
    return Gtk::Window::on_window_state_event(event);
}

void viewer_window_t::toggle_info() {
    refresh_info();
    info_.set_visible(!info_.get_visible());
}

void viewer_window_t::toggle_slide_show() {
    if (slide_show_.connected()) {
        slide_show_.disconnect();
        refresh();
    } else {
        start_slide_show(slide_seconds_);
    }
}

void viewer_window_t::start_slide_show(double seconds) {
    slide_seconds_ = seconds;
    slide_show_.disconnect();
    slide_show_ = Glib::signal_timeout().connect(sigc::mem_fun(*this, &viewer_window_t::slide),
                                                 static_cast<unsigned>(std::lround(1000 * seconds)));
    refresh();
}

// Each picture is seen for at least one turn, however long it took to load.
bool viewer_window_t::slide() {
    if (view_.count() != 0 && view_.facts().known) {
        view_.show_picture(view_.index() + 1 == view_.count() ? 0 : view_.index() + 1);
    }
    return true;
}

void viewer_window_t::back() {
    if (full_screen_) {
        unfullscreen();
    } else if (slide_show_.connected()) {
        toggle_slide_show();
    }
}

void viewer_window_t::open_dropped(const std::vector<Glib::ustring>& uris) {
    std::vector<std::string> paths;
    for (const Glib::ustring& uri : uris) {
        try {
            paths.push_back(Glib::filename_from_uri(uri));
        } catch (const Glib::Error&) {
            libutils::report("talovue3: ", libutils::printable(uri.raw()), ": not a file of this machine.");
        }
    }
    picture_list_t list;
    std::string problem;
    if (!list_pictures(list, paths, problem)) {
        libutils::report("talovue3: ", libutils::printable(problem));
    } else if (!paths.empty()) {
        view_.set_pictures(std::move(list.pictures), list.first);
        present();
    }
}

void viewer_window_t::on_drag_data_received(const Glib::RefPtr<Gdk::DragContext>& /*context*/, int /*x*/, int /*y*/,
                                            const Gtk::SelectionData& data, guint /*info*/, guint /*time*/) {
    open_dropped(data.get_uris());
}

bool viewer_window_t::on_key_press_event(GdkEventKey* event) {
    struct view_key_t {
        guint key;
        guint also;  // mostly the same on the keypad
        void (picture_view_t::*action)();
    };
    static constexpr view_key_t view_keys[] = {
        {GDK_KEY_Left, GDK_KEY_KP_Left, &picture_view_t::previous},
        {GDK_KEY_Up, GDK_KEY_KP_Up, &picture_view_t::previous},
        {GDK_KEY_Page_Up, GDK_KEY_KP_Page_Up, &picture_view_t::previous},
        {GDK_KEY_BackSpace, GDK_KEY_BackSpace, &picture_view_t::previous},
        {GDK_KEY_Right, GDK_KEY_KP_Right, &picture_view_t::next},
        {GDK_KEY_Down, GDK_KEY_KP_Down, &picture_view_t::next},
        {GDK_KEY_Page_Down, GDK_KEY_KP_Page_Down, &picture_view_t::next},
        {GDK_KEY_space, GDK_KEY_KP_Space, &picture_view_t::next},
        {GDK_KEY_Home, GDK_KEY_KP_Home, &picture_view_t::first},
        {GDK_KEY_End, GDK_KEY_KP_End, &picture_view_t::last},
        {GDK_KEY_plus, GDK_KEY_KP_Add, &picture_view_t::zoom_in},
        {GDK_KEY_equal, GDK_KEY_equal, &picture_view_t::zoom_in},  // "+" without Shift on many keyboards
        {GDK_KEY_minus, GDK_KEY_KP_Subtract, &picture_view_t::zoom_out},
        {GDK_KEY_1, GDK_KEY_KP_1, &picture_view_t::one_to_one},
        {GDK_KEY_0, GDK_KEY_KP_0, &picture_view_t::fit},
        {GDK_KEY_r, GDK_KEY_R, &picture_view_t::turn_right},
        {GDK_KEY_l, GDK_KEY_L, &picture_view_t::turn_left},
    };
    struct window_key_t {
        guint key;
        guint also;
        void (viewer_window_t::*action)();
    };
    static constexpr window_key_t window_keys[] = {
        {GDK_KEY_f, GDK_KEY_F, &viewer_window_t::toggle_full_screen},
        {GDK_KEY_F11, GDK_KEY_F11, &viewer_window_t::toggle_full_screen},
        {GDK_KEY_Escape, GDK_KEY_Escape, &viewer_window_t::back},
        {GDK_KEY_s, GDK_KEY_S, &viewer_window_t::toggle_slide_show},
        {GDK_KEY_i, GDK_KEY_I, &viewer_window_t::toggle_info},
    };
    struct control_key_t {
        guint key;
        double right;
        double down;
    };
    static constexpr control_key_t control_keys[] = {{GDK_KEY_Left, -pan_step, 0},
                                                     {GDK_KEY_Up, 0, -pan_step},
                                                     {GDK_KEY_Right, pan_step, 0},
                                                     {GDK_KEY_Down, 0, pan_step}};
    if ((event->state & (GDK_MOD1_MASK | GDK_SUPER_MASK)) != 0) {
        return Gtk::Window::on_key_press_event(event);
    }
    const auto meant = [event](const auto& row) { return row.key == event->keyval; };
    const auto meant_also = [event](const auto& row) { return row.key == event->keyval || row.also == event->keyval; };
    if ((event->state & GDK_CONTROL_MASK) != 0) {
        if (const auto* row = std::find_if(std::begin(control_keys), std::end(control_keys), meant);
            row != std::end(control_keys)) {
            view_.pan(row->right, row->down);
            return true;
        }
        if (event->keyval == GDK_KEY_q || event->keyval == GDK_KEY_w) {
            close();
            return true;
        }
    }
    if (const auto* row = std::find_if(std::begin(view_keys), std::end(view_keys), meant_also);
        row != std::end(view_keys)) {
        (view_.*row->action)();
        return true;
    }
    if (const auto* row = std::find_if(std::begin(window_keys), std::end(window_keys), meant_also);
        row != std::end(window_keys)) {
        (this->*row->action)();
        return true;
    }
    return Gtk::Window::on_key_press_event(event);
}

}  // namespace talovue
