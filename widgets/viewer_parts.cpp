#include "widgets/viewer_parts.h"

#include <glibmm/markup.h>

#include <algorithm>

#include "album/texts/comment_store.h"
#include "libutils/files/system_path.h"
#include "libutils/text/text.h"
#include "toolkit/display.h"
#include "toolkit/text_encoding.h"
#include "toolkit/window_preferences.h"

namespace taloram {

namespace {

constexpr int highest_text = 96;       // pixels
constexpr int window_decoration = 60;  // pixels, title bar and borders

void set_comment(Gtk::Label& label, std::string text) {
    std::erase(text, '\r');
    libutils::chop2(text);
    label.set_text(to_toolkit(text));
}

}  // namespace

void viewer_texts_t::load(const std::string& directory) {
    comment_texts_t texts;
    const unread_text_t unread = load_comments(texts, directory);
    libutils::chop2(texts.title);
    title.set_markup(
        "<b>" +
        Glib::Markup::escape_text(to_toolkit(texts.title.empty() ? libutils::last_component(directory) : texts.title)) +
        "</b>");
    title.set_ellipsize(Pango::ELLIPSIZE_END);
    title.set_tooltip_text(title.get_text());
    set_comment(head, texts.head);
    set_comment(last, texts.last);
    if (unread) {
        report_unread(unread);
        head.set_text(message_text(msg_text_unreadable) + " " +
                      to_toolkit(unread.path + ": " + unread.reason.message()));
    }
}

Gtk::Widget& scrolled_text(Gtk::Label& label) {
    label.set_line_wrap();
    label.set_line_wrap_mode(Pango::WRAP_WORD_CHAR);
    label.set_halign(Gtk::ALIGN_START);
    label.set_xalign(0);
    auto* const scroller = Gtk::manage(new Gtk::ScrolledWindow);
    scroller->set_policy(Gtk::POLICY_NEVER, Gtk::POLICY_AUTOMATIC);
    scroller->set_propagate_natural_height(true);
    scroller->set_max_content_height(highest_text);
    scroller->add(label);
    scroller->set_no_show_all(label.get_text().empty());
    return *scroller;
}

void make_viewer_window(Gtk::Dialog& dialog, Gtk::Window& parent, const char* name, int width, int height) {
    const Gdk::Rectangle area = work_area(parent);
    // As an ordinary window it has buttons to make it larger, and may cover the whole screen.
    dialog.set_type_hint(Gdk::WINDOW_TYPE_HINT_NORMAL);
    dialog.set_resizable();
    dialog.set_default_size(std::min(width, area.get_width() - window_decoration),
                            std::min(height, area.get_height() - window_decoration));
    keep_size(dialog, name);
    dialog.set_border_width(6);
}

}  // namespace taloram
