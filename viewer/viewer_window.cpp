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
    struct key_t {
        guint key;
        guint also;
        void (*action)(viewer_window_t& window);
    };
    static constexpr key_t keys[] = {
        {GDK_KEY_f, GDK_KEY_F, [](viewer_window_t& window) { window.toggle_full_screen(); }},
        {GDK_KEY_F11, GDK_KEY_F11, [](viewer_window_t& window) { window.toggle_full_screen(); }},
        {GDK_KEY_Escape, GDK_KEY_Escape, [](viewer_window_t& window) { window.back(); }},
        {GDK_KEY_s, GDK_KEY_S, [](viewer_window_t& window) { window.toggle_slide_show(); }},
        {GDK_KEY_i, GDK_KEY_I, [](viewer_window_t& window) { window.toggle_info(); }},
        {GDK_KEY_BackSpace, GDK_KEY_BackSpace, [](viewer_window_t& window) { window.view_.previous(); }},
        {GDK_KEY_space, GDK_KEY_KP_Space, [](viewer_window_t& window) { window.view_.next(); }},
        {GDK_KEY_r, GDK_KEY_R, [](viewer_window_t& window) { window.view_.turn_right(); }},
        {GDK_KEY_l, GDK_KEY_L, [](viewer_window_t& window) { window.view_.turn_left(); }},
    };
    if ((event->state & (GDK_MOD1_MASK | GDK_SUPER_MASK)) != 0) {
        return Gtk::Window::on_key_press_event(event);
    }
    const bool control = (event->state & GDK_CONTROL_MASK) != 0;
    if (control && (event->keyval == GDK_KEY_q || event->keyval == GDK_KEY_w)) {
        close();
        return true;
    }
    if (view_.take_key(event->keyval, control)) {
        return true;
    }
    const auto* const row = std::find_if(std::begin(keys), std::end(keys), [event](const key_t& key) {
        return key.key == event->keyval || key.also == event->keyval;
    });
    if (row != std::end(keys)) {
        row->action(*this);
        return true;
    }
    return Gtk::Window::on_key_press_event(event);
}

}  // namespace talovue
