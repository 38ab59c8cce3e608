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
#include "widgets/raise_window.h"
#include "widgets/single_line.h"
#include "widgets/table_scroller.h"
#include "widgets/thumbnails.h"

namespace taloram {

namespace {

constexpr guint rows_per_file = 3;
constexpr int highest_list = 400;  // pixels
constexpr int label_width = 20;    // characters
constexpr int entry_width = 50;    // characters
constexpr int spacing = 4;         // pixels
constexpr int least_width = 120;   // pixels, of a file without picture
constexpr int least_height = 90;   // pixels
constexpr int view_width = 300;    // pixels
constexpr int view_height = 100;   // pixels

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
      grid_(scroller_, table_, rows_per_file, [this](size_t index) { return std::make_unique<cell_t>(*this, index); }) {
    from_entry_.set_text(from_.keep(from));
    to_entry_.set_text(todays_name());
    set_up_widgets();
    pack();
    connect();
    add_button(Gtk::Stock::OK, Gtk::RESPONSE_OK);
    add_button(Gtk::Stock::CANCEL, Gtk::RESPONSE_CANCEL);
    set_default_response(Gtk::RESPONSE_OK);
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
    notice_.set_text(message_text(msg_nothing_listed));
    notice_.set_line_wrap(true);
    notice_.set_no_show_all(true);
    notice_.show();
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
    invert_button_.signal_clicked().connect(sigc::mem_fun(*this, &MakeAlbumDialog::button_invert));
    update_button_.signal_clicked().connect(sigc::mem_fun(*this, &MakeAlbumDialog::button_update));
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

std::vector<files_t> MakeAlbumDialog::selected_files() const {
    std::vector<files_t> files;
    files.reserve(items_.size());
    // Cameras use the same names again and again: names listed in one directory mean other pictures in the next.
    // With none the selection stands, and the caller asks for the directory.
    if (const std::string from = get_from(); is_complete_ && (from == listed_from_ || from.empty())) {
        for (const photo_choice_t& item : items_) {
            if (item.is_selected) {
                files.push_back(item.chosen());
            }
        }
    }
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
    items_.clear();
    for (const std::string& name : file_names_) {
        items_.push_back({name});
    }
    notice_.set_text(message_text(is_complete_ ? msg_source_empty : msg_source_unreadable));
    notice_.set_visible(items_.empty());
    grid_.reset(items_.size(), photos_in_row());
    if (is_complete_) {
        comment_texts_t found;
        const unread_text_t unread = load_comments_in(found, listed_from_);
        fill_texts(found, unread);
    }
    return is_complete_;
}

// Without a word a text that can't be read would pass for none, and the album be made without it.
void MakeAlbumDialog::fill_texts(const comment_texts_t& found, const unread_text_t& unread) {
    texts_.fill(found);
    if (unread) {
        report_unread(unread);
        notice_.set_text(message_text(msg_text_unreadable) + "\n" +
                         to_toolkit(unread.path + ": " + unread.reason.message()));
        notice_.show();
    }
}

MakeAlbumDialog::cell_t::cell_t(MakeAlbumDialog& owner, size_t place)
    : photo_cell_t(owner.items_[place]), dialog(owner), index(place) {
    const photo_choice_t& item = owner.items_[place];
    const Glib::ustring shown_name = to_toolkit(item.name);
    set_short_text(label, shown_name, label_width);
    rotation.set_update_policy(Gtk::UPDATE_IF_VALID);
    rotation.set_editable(item.is_selected);
    rotation.set_sensitive(item.is_selected);
    select.set_active(item.is_selected);
    select.set_size_request(least_width, least_height);
    select.set_tooltip_text(shown_name);
    select.get_accessible()->set_name(shown_name);
    select.signal_clicked().connect([this] { dialog.button_image(index); });
    rotation.signal_value_changed().connect([this] { dialog.button_rotate(index); });
}

std::vector<Gtk::Widget*> MakeAlbumDialog::cell_t::widgets() {
    return {&select, &label, is_photo(dialog.items_[index].name) ? &rotation : nullptr};
}

void MakeAlbumDialog::cell_t::fill() {
    if (load_thumbnail(preview, entry_path(dialog.listed_from_, dialog.items_[index].name))) {
        dialog.button_rotate(index);
    }
}

MakeAlbumDialog::cell_t* MakeAlbumDialog::find_cell(size_t index) const {
    return dynamic_cast<cell_t*>(grid_.find(index));
}

bool MakeAlbumDialog::load_album_texts() {
    loaded_to_ = get_to();
    comment_texts_t found;
    if (loaded_to_.empty() || !is_exist(entry_path(loaded_to_, layout::text))) {
        return false;
    }
    const unread_text_t unread = load_comments(found, loaded_to_);
    fill_texts(found, unread);
    show_all_children();
    return !unread;
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

void MakeAlbumDialog::button_invert() {
    for (size_t index = 0; index < items_.size(); ++index) {
        if (cell_t* const cell = find_cell(index)) {
            cell->select.set_active(!items_[index].is_selected);
        } else {
            items_[index].is_selected = !items_[index].is_selected;
        }
    }
}

void MakeAlbumDialog::button_update() {
    list_source();
    load_album_texts();
}

void MakeAlbumDialog::button_image(size_t index) {
    if (cell_t* const cell = find_cell(index)) {
        const bool is_selected = cell->select.get_active();
        items_[index].is_selected = is_selected;
        cell->rotation.set_editable(is_selected);
        cell->rotation.set_sensitive(is_selected);
        cell->rotation.set_can_focus(false);
    }
}

void MakeAlbumDialog::button_rotate(size_t index) {
    cell_t* const cell = find_cell(index);
    if (cell == nullptr) {
        return;
    }
    photo_choice_t& item = items_[index];
    item.angle = cell->rotation.get_value_as_int();
    if (cell->is_filled && cell->show_turned(cell->preview, item.quarter_turns().value_or(0), item.name)) {
        cell->select.set_image(cell->picture);
    }
}

void MakeAlbumDialog::table_size_allocate(Gdk::Rectangle& allocation) {
    follow_table(scroller_, *this, allocation, highest_list);
}

}  // namespace taloram
