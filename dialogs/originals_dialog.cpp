#include "dialogs/originals_dialog.h"

#include <glibmm/datetime.h>
#include <glibmm/markup.h>
#include <gtkmm/stock.h>

#include <chrono>

#include "album/apart.h"
#include "libutils/files/system_path.h"
#include "messages/message.h"
#include "toolkit/text_encoding.h"
#include "toolkit/window_preferences.h"
#include "widgets/window_keys.h"

namespace taloram {

namespace {

constexpr int gap = 6;       // pixels between widgets
constexpr int width = 640;   // pixels
constexpr int height = 320;  // pixels
constexpr std::chrono::milliseconds patience{300};

e_message_local_t text_of(flaw_t flaw) {
    switch (flaw) {
        case flaw_t::changed:
            return msg_flaw_changed;
        case flaw_t::unreadable:
            return msg_flaw_unreadable;
        case flaw_t::missing:
            return msg_flaw_missing;
        case flaw_t::unlisted:
            break;
    }
    return msg_flaw_unlisted;
}

bool lacks_sums(const checked_album_t& album) {
    return !album.result.has_sums && !album.result.stopped;
}

Glib::ustring heading(const originals_check_t& check) {
    const Glib::ustring count = " " + std::to_string(check.count());
    if (check.stopped) {
        return message_text(msg_check_stopped) + count;
    }
    if (check.albums.empty() && check.is_good) {
        return message_text(msg_empty_book);
    }
    if (check.is_good) {
        return message_text(msg_as_imported) + count;
    }
    const bool is_without_sums = check.albums.size() == 1 && lacks_sums(check.albums.front());
    return message_text(is_without_sums ? msg_no_sums : msg_flaws_found);
}

Glib::ustring details(const checked_album_t& album, bool is_alone) {
    Glib::ustring lines = is_alone ? Glib::ustring() : to_toolkit(album.path) + "\n";
    for (const flawed_file_t& file : album.flaws) {
        lines += to_toolkit(file.path) + ": " + message_text(text_of(file.flaw));
        lines += (file.reason.empty() ? "" : " " + to_toolkit(file.reason)) + "\n";
    }
    if (lacks_sums(album)) {
        lines += is_alone ? Glib::ustring() : message_text(msg_no_sums) + "\n";
    } else if (!album.failure.empty()) {
        lines += to_toolkit(album.failure) + "\n";
    }
    if (album.result.written_at != 0) {
        const Glib::ustring time = Glib::DateTime::create_now_local(album.result.written_at).format("%x %H:%M");
        lines += message_text(msg_sums_written) + " " + time + "\n";
    }
    return lines + (is_alone ? "" : "\n");
}

}  // namespace

OriginalsDialog::OriginalsDialog(Gtk::Window& parent, const std::string& directory, const originals_check_t& check)
    : Gtk::Dialog(message_text(msg_check_originals) + " - " + to_toolkit(libutils::last_component(directory)), parent,
                  true) {
    const bool is_alone = check.albums.size() == 1 && check.albums.front().path == directory;
    Glib::ustring lines;
    for (const checked_album_t& album : check.albums) {
        lines += details(album, is_alone);
    }
    lines += to_toolkit(check.failure);
    heading_.set_markup("<b>" + Glib::Markup::escape_text(heading(check)) + "</b>");
    for (Gtk::Label* label : {&heading_, &note_}) {
        label->set_line_wrap();
        label->set_max_width_chars(60);
        label->set_xalign(0);
        label->set_selectable();
        label->set_can_focus(false);
    }
    details_.get_buffer()->set_text(lines);
    details_.get_accessible()->set_name(message_text(msg_check_originals));
    details_.set_editable(false);
    details_.set_cursor_visible(false);
    details_.set_wrap_mode(Gtk::WRAP_WORD_CHAR);
    scroller_.set_shadow_type(Gtk::SHADOW_IN);
    scroller_.add(details_);
    Gtk::Box& area = *get_content_area();
    area.set_spacing(gap);
    area.set_border_width(gap);
    area.pack_start(heading_, Gtk::PACK_SHRINK);
    if (is_alone && check.albums.front().flaws.empty() && lines.find('\n') + 1 == lines.size()) {
        note_.set_text(lines);
        area.pack_start(note_, Gtk::PACK_SHRINK);
    } else if (!lines.empty()) {
        set_default_size(width, height);
        keep_size(*this, "originals");
        area.pack_start(scroller_);
    }
    add_button(Gtk::Stock::CLOSE, Gtk::RESPONSE_CLOSE);
    set_default_response(Gtk::RESPONSE_CLOSE);
    add_window_keys(*this);
    show_all_children();
}

void show_originals_check(Gtk::Window& parent, progress_window_t& progress, const std::string& directory) {
    progress.begin(to_toolkit(directory), patience);
    progress.show_check();
    const originals_check_t check = apart::check_originals(directory, progress.signals());
    progress.end();
    OriginalsDialog(parent, directory, check).run();
}

}  // namespace taloram
