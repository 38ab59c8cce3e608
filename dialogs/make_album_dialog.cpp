#include "dialogs/make_album_dialog.h"

#include <glibmm/main.h>
#include <gtkmm/filechooserdialog.h>
#include <gtkmm/stock.h>

#include <ctime>
#include <iostream>

#include "album/day_name.h"
#include "album/texts/comment_store.h"
#include "libutils/files/directory.h"
#include "libutils/files/path.h"
#include "talolib/option.h"
#include "toolkit/window_preferences.h"
#include "widgets/folder_drop.h"
#include "widgets/raise_window.h"
#include "widgets/single_line.h"
#include "widgets/table_scroller.h"
#include "widgets/window_keys.h"

namespace taloram {

namespace {

constexpr const char* window_name = "album maker";  // in the preferences
constexpr int highest_list = 400;                   // pixels
constexpr int label_width = 20;                     // characters
constexpr int entry_width = 50;                     // characters
constexpr int spacing = 4;                          // pixels
constexpr int view_width = 300;                     // pixels
constexpr int view_height = 100;                    // pixels

std::string todays_name() {
    const std::optional<day_t> today = local_day(time(nullptr));
    return today ? day_name(*today) : "";
}

void set_up_entry(Gtk::Label& label, Gtk::Entry& entry, e_message_local_t text, std::string& taken) {
    label.set_text_with_mnemonic(mnemonic_text(text, taken));
    label.set_mnemonic_widget(entry);
    label.set_width_chars(label_width);
    label.set_xalign(0);
    entry.set_width_chars(entry_width);
    entry.get_accessible()->set_name(message_text(text));
    keep_on_one_line(entry);
}

void report_if_unread(const unread_text_t& unread) {
    if (unread) {
        report_unread(unread);
    }
}

void set_up_button(Gtk::Button& button, e_message_local_t text, std::string& taken) {
    button.set_label(mnemonic_text(text, taken));
    button.set_use_underline(true);
}

}  // namespace

MakeAlbumDialog::MakeAlbumDialog(Gtk::Window& parent, const std::string& from, const std::string& bookdir)
    : Gtk::Dialog(message_text(msg_new_album), parent, true),
      bookdir_(bookdir),
      mnemonics_(stock_letters({Gtk::Stock::OK, Gtk::Stock::CANCEL})),
      table_(1, 1),
      files_(scroller_, table_) {
    from_entry_.set_text(from_.keep(from));
    to_entry_.set_text(todays_name());
    set_up_widgets();
    pack();
    set_up_choices();
    connect();
    add_button(Gtk::Stock::OK, Gtk::RESPONSE_OK);
    add_button(Gtk::Stock::CANCEL, Gtk::RESPONSE_CANCEL);
    set_default_response(Gtk::RESPONSE_OK);
    keep_size(*this, window_name);
    add_window_keys(*this);
    show_all();
}

// While the members go, the entry that has the focus loses it, and what it would list and load is half gone.
MakeAlbumDialog::~MakeAlbumDialog() {
    for (sigc::connection& connection : on_leave_) {
        connection.disconnect();
    }
}

void MakeAlbumDialog::set_up_widgets() {
    set_up_entry(from_label_, from_entry_, msg_from, mnemonics_);
    set_up_entry(to_label_, to_entry_, msg_to, mnemonics_);
    to_entry_.set_activates_default(true);
    set_up_button(from_button_, msg_browse, mnemonics_);
    set_up_button(invert_button_, msg_invert, mnemonics_);
    set_up_button(update_button_, msg_update, mnemonics_);
    // Else the click would leave the entry first and list twice.
    update_button_.set_focus_on_click(false);
    table_caption_.set_text(message_text(msg_photographs));
    table_caption_.set_xalign(0);
    table_.get_accessible()->set_name(message_text(msg_photographs));
    notice_.set_line_wrap(true);
    notice_.set_no_show_all(true);
    show_notice();
}

// Behind all others, which keep their letters.
void MakeAlbumDialog::set_up_choices() {
    set_up_button(verify_button_, msg_verify_copies, mnemonics_);
    set_up_button(leave_out_button_, msg_leave_out, mnemonics_);
    set_up_button(new_button_, msg_select_new, mnemonics_);
    show_search();
    keep_choice(verify_button_, window_name, "verify_copies");
    keep_choice(leave_out_button_, window_name, "leave_out");
}

void MakeAlbumDialog::pack() {
    from_row_.pack_start(from_label_, Gtk::PACK_SHRINK);
    from_row_.pack_start(from_entry_);
    from_row_.pack_start(from_button_, Gtk::PACK_SHRINK);
    to_row_.pack_start(to_label_, Gtk::PACK_SHRINK);
    to_row_.pack_start(to_entry_);
    scroller_.set_policy(Gtk::POLICY_AUTOMATIC, Gtk::POLICY_AUTOMATIC);
    scroller_.set_redraw_on_allocate(true);
    button_row_.set_spacing(spacing);
    button_row_.pack_start(invert_button_, Gtk::PACK_SHRINK);
    button_row_.pack_start(update_button_, Gtk::PACK_SHRINK);
    button_row_.pack_start(verify_button_, Gtk::PACK_SHRINK);
    button_row_.pack_start(leave_out_button_, Gtk::PACK_SHRINK);
    button_row_.pack_end(new_button_, Gtk::PACK_SHRINK);

    Gtk::Box& area = *get_content_area();
    area.set_spacing(spacing);
    area.set_border_width(spacing);
    area.pack_start(from_row_, Gtk::PACK_SHRINK);
    area.pack_start(to_row_, Gtk::PACK_SHRINK);
    area.pack_start(table_caption_, Gtk::PACK_SHRINK);
    area.pack_start(notice_, Gtk::PACK_SHRINK);
    area.pack_start(scroller_, Gtk::PACK_EXPAND_WIDGET);
    area.pack_start(button_row_, Gtk::PACK_SHRINK);
    pack_texts(area);
}

void MakeAlbumDialog::pack_texts(Gtk::Box& area) {
    texts_.head.set_size_request(view_width, view_height);
    texts_.last.set_size_request(view_width, view_height);
    area.pack_start(caption(msg_title, texts_.title, mnemonics_), Gtk::PACK_SHRINK);
    area.pack_start(texts_.title, Gtk::PACK_SHRINK);
    area.pack_start(caption(msg_head_comment, texts_.head, mnemonics_), Gtk::PACK_SHRINK);
    area.pack_start(framed_text(texts_.head, view_height), Gtk::PACK_SHRINK);
    area.pack_start(caption(msg_last_comment, texts_.last, mnemonics_), Gtk::PACK_SHRINK);
    area.pack_start(framed_text(texts_.last, view_height), Gtk::PACK_SHRINK);
}

void MakeAlbumDialog::connect() {
    // Behind the entries' own handlers, which must see the event too.
    on_leave_ = {
        from_entry_.signal_focus_out_event().connect(sigc::mem_fun(*this, &MakeAlbumDialog::leave_from), true),
        to_entry_.signal_focus_out_event().connect(sigc::mem_fun(*this, &MakeAlbumDialog::leave_to), true),
    };
    from_entry_.signal_activate().connect([this] { leave_from(nullptr); });
    from_button_.signal_clicked().connect(sigc::mem_fun(*this, &MakeAlbumDialog::button_from));
    // A directory that is dropped on the entry is no text for it, and goes to the window.
    from_entry_.drag_dest_unset();
    accept_folder(*this, [this](const std::string& folder) {
        from_entry_.set_text(from_.keep(folder));
        list_source();
    });
    invert_button_.signal_clicked().connect(sigc::mem_fun(*this, &MakeAlbumDialog::button_invert));
    update_button_.signal_clicked().connect(sigc::mem_fun(*this, &MakeAlbumDialog::button_update));
    new_button_.signal_clicked().connect([this] { files_.select_new(); });
    files_.signal_searched().connect(sigc::mem_fun(*this, &MakeAlbumDialog::show_search));
    table_.signal_size_allocate().connect(sigc::mem_fun(*this, &MakeAlbumDialog::table_size_allocate));
}

void MakeAlbumDialog::on_map() {
    Gtk::Dialog::on_map();
    // After the first drawing, so that the dialog appears at once.
    const auto fill = sigc::track_obj(
        [this] {
            leave_from(nullptr);
            leave_to(nullptr);
            return false;
        },
        *this);
    Glib::signal_idle().connect(fill);
}

std::string MakeAlbumDialog::get_from() const {
    return from_.bytes(from_entry_.get_text());
}

std::string MakeAlbumDialog::get_to() const {
    const std::string name = libutils::strip_trailing_slash(from_toolkit(to_entry_.get_text()));
    const bool names_the_book = name.empty() || name == "/" || name == "." || name == "..";
    return names_the_book ? std::string() : bookdir_ + "/" + name;
}

import_options_t MakeAlbumDialog::options() const {
    return {verify_button_.get_active(), leave_out_button_.get_active()};
}

// Cameras use the same names again and again: names listed in one directory mean other pictures in the next. With none
// the selection stands, and the caller asks for the directory.
std::vector<files_t> MakeAlbumDialog::selected_files() const {
    const std::string from = get_from();
    const bool is_current = is_complete_ && (from == listed_from_ || from.empty());
    const std::vector<files_t> files = is_current ? files_.selected() : std::vector<files_t>();
    talolib::trace(std::cout, "selected_files.size(): ", files.size());
    return files;
}

bool MakeAlbumDialog::is_listed() const {
    const std::string from = get_from();
    std::list<std::string> names;
    return is_complete_ && listed_from_ == from && libutils::getfiles(names, from.c_str()) && names == file_names_;
}

bool MakeAlbumDialog::leave_from(GdkEventFocus* /*event*/) {
    return !is_listed() && list_source();
}

bool MakeAlbumDialog::leave_to(GdkEventFocus* /*event*/) {
    return get_to() != loaded_to_ && load_album_texts();
}

bool MakeAlbumDialog::list_source() {
    listed_from_ = get_from();
    is_complete_ = !listed_from_.empty() && !libutils::list_files(file_names_, listed_from_);
    if (!is_complete_) {
        file_names_.clear();
    }
    empty_list_ = is_complete_ ? msg_source_empty : msg_source_unreadable;
    files_.show_files(listed_from_, file_names_, bookdir_);
    unread_from_ = {};
    if (is_complete_) {
        comment_texts_t found;
        unread_from_ = load_comments_in(found, listed_from_);
        texts_.fill(found);
        report_if_unread(unread_from_);
    }
    show_notice();
    return is_complete_;
}

// What stands in for the list, and what can't be read: without a word such a text would pass for none, and the album be
// made without it.
void MakeAlbumDialog::show_notice() {
    Glib::ustring lines;
    const auto add_line = [&lines](const Glib::ustring& line) { lines += (lines.empty() ? "" : "\n") + line; };
    if (file_names_.empty()) {
        add_line(message_text(empty_list_));
    }
    for (const unread_text_t& unread : {unread_from_, unread_to_}) {
        if (unread) {
            add_line(message_text(msg_text_unreadable));
            add_line(to_toolkit(unread.path + ": " + unread.reason.message()));
        }
    }
    notice_.set_text(lines);
    notice_.set_visible(!lines.empty());
}

void MakeAlbumDialog::show_search() {
    using search_t = source_grid_t::search_t;
    const search_t search = files_.search();
    Glib::ustring hint = message_text(msg_select_new_hint);
    if (search == search_t::going_on) {
        hint = message_text(msg_searching_book);
    } else if (search == search_t::failed) {
        hint = message_text(msg_book_not_searched) + "\n" + to_toolkit(files_.why_failed());
    }
    new_button_.set_tooltip_text(hint);
    new_button_.set_sensitive(search == search_t::done);
}

bool MakeAlbumDialog::load_album_texts() {
    loaded_to_ = get_to();
    unread_to_ = {};
    const bool has_texts = !loaded_to_.empty() && is_exist(entry_path(loaded_to_, layout::text));
    if (has_texts) {
        comment_texts_t found;
        unread_to_ = load_comments(found, loaded_to_);
        texts_.fill(found);
        report_if_unread(unread_to_);
    }
    show_notice();
    return has_texts && !unread_to_;
}

bool MakeAlbumDialog::choose_folder(std::string& folder, e_message_local_t title, const std::string& start) {
    Gtk::FileChooserDialog chooser(*this, message_text(title), Gtk::FILE_CHOOSER_ACTION_SELECT_FOLDER);
    chooser.set_current_folder(start);
    chooser.add_button(Gtk::Stock::OPEN, Gtk::RESPONSE_OK);
    chooser.add_button(Gtk::Stock::CANCEL, Gtk::RESPONSE_CANCEL);
    chooser.set_default_response(Gtk::RESPONSE_OK);
    if (chooser.run() != Gtk::RESPONSE_OK) {
        return false;
    }
    folder = chooser.get_filename();
    return !folder.empty();
}

void MakeAlbumDialog::button_from() {
    if (std::string folder; choose_folder(folder, msg_source_directory, get_from())) {
        from_entry_.set_text(from_.keep(folder));
        list_source();
    }
    raise_window(*this);
}

void MakeAlbumDialog::button_to() {
    const std::string name = from_toolkit(to_entry_.get_text());
    if (std::string folder; choose_folder(folder, msg_album_directory, name) && folder != name) {
        to_entry_.set_text(to_toolkit(folder));
        load_album_texts();
    }
    raise_window(*this);
}

void MakeAlbumDialog::button_update() {
    list_source();
    load_album_texts();
}

void MakeAlbumDialog::table_size_allocate(Gdk::Rectangle& allocation) {
    follow_table(scroller_, *this, allocation, highest_list);
}

}  // namespace taloram
