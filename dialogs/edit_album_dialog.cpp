#include "dialogs/edit_album_dialog.h"

#include <gtkmm/stock.h>

#include <iostream>

#include "album/apart.h"
#include "album/texts/comment_store.h"
#include "album/turn/planned_turn.h"
#include "album/turn/turn_photo.h"
#include "dialogs/text_input_dialog.h"
#include "libutils/diagnostics.h"
#include "libutils/files/directory.h"
#include "libutils/files/system_path.h"
#include "talolib/option.h"
#include "toolkit/text_encoding.h"
#include "toolkit/window_preferences.h"
#include "widgets/message_box.h"
#include "widgets/table_scroller.h"
#include "widgets/thumbnail_grid.h"
#include "widgets/thumbnails.h"
#include "widgets/window_keys.h"

namespace taloram {

namespace {

constexpr guint rows_per_photo = 4;
constexpr int cell_width = 24;    // characters
constexpr int view_width = 300;   // pixels
constexpr int view_height = 100;  // pixels
constexpr int spacing = 4;        // pixels

// A button that gives way to a narrow window.
void set_short_label(Gtk::Button& button, const Glib::ustring& text) {
    button.set_label(text);
    if (auto* label = dynamic_cast<Gtk::Label*>(button.get_child())) {
        label->set_ellipsize(Pango::ELLIPSIZE_MIDDLE);
        label->set_max_width_chars(cell_width);
    }
    button.set_tooltip_text(text);
}

void set_wrapped_text(Gtk::Label& label, const Glib::ustring& text) {
    label.set_text(text);
    label.set_line_wrap(true);
    label.set_line_wrap_mode(Pango::WRAP_WORD_CHAR);
    label.set_width_chars(cell_width);
    label.set_max_width_chars(cell_width);
    label.set_xalign(0);
    label.set_yalign(0);
    label.set_margin_start(spacing);
    label.set_margin_end(spacing);
}

}  // namespace

EditAlbumDialog::EditAlbumDialog(Gtk::Window& parent, const std::string& album)
    : Gtk::Dialog(message_text(msg_edit) + " - " + to_toolkit(libutils::last_component(album)), parent, true),
      album_(album),
      mnemonics_(stock_letters({Gtk::Stock::OK, Gtk::Stock::APPLY, Gtk::Stock::CANCEL})),
      table_(1, 1),
      grid_(scroller_, table_, rows_per_photo, [this](size_t index) { return std::make_unique<cell_t>(*this, index); }),
      progress_(*this) {
    notice_.set_line_wrap(true);
    notice_.set_no_show_all(true);
    pack();
    if (!make_rows()) {
        libutils::report(album_, ": EditAlbumDialog make_rows() failed.");
    }
    update_comment();
    table_.signal_size_allocate().connect(sigc::mem_fun(*this, &EditAlbumDialog::table_size_allocate));
    add_button(Gtk::Stock::OK, Gtk::RESPONSE_OK);
    add_button(Gtk::Stock::APPLY, Gtk::RESPONSE_APPLY);
    add_button(Gtk::Stock::CANCEL, Gtk::RESPONSE_CANCEL);
    set_default_response(Gtk::RESPONSE_OK);
    add_window_keys(*this);
    keep_size(*this, "album editor");
    show_all_children();
}

void EditAlbumDialog::pack() {
    texts_.head.set_size_request(view_width, view_height);
    texts_.last.set_size_request(view_width, view_height);
    table_.get_accessible()->set_name(to_toolkit(album_));
    scroller_.set_policy(Gtk::POLICY_AUTOMATIC, Gtk::POLICY_AUTOMATIC);
    box_.pack_start(scroller_, Gtk::PACK_EXPAND_WIDGET);

    Gtk::Box& area = *get_content_area();
    area.set_spacing(spacing);
    area.set_border_width(spacing);
    area.pack_start(caption(msg_title, texts_.title, mnemonics_), Gtk::PACK_SHRINK);
    area.pack_start(texts_.title, Gtk::PACK_SHRINK);
    area.pack_start(caption(msg_head_comment, texts_.head, mnemonics_), Gtk::PACK_SHRINK);
    area.pack_start(framed_text(texts_.head, view_height), Gtk::PACK_SHRINK);
    area.pack_start(notice_, Gtk::PACK_SHRINK);
    area.pack_start(box_, Gtk::PACK_EXPAND_WIDGET);
    area.pack_start(caption(msg_last_comment, texts_.last, mnemonics_), Gtk::PACK_SHRINK);
    area.pack_start(framed_text(texts_.last, view_height), Gtk::PACK_SHRINK);
}

bool EditAlbumDialog::make_rows() {
    const std::error_code error = libutils::list_files(files_, entry_path(album_, layout::original));
    items_.clear();
    for (const std::string& name : files_) {
        items_.push_back({name});
    }
    notice_.set_text(message_text(error ? msg_album_unreadable : msg_album_empty));
    notice_.set_visible(items_.empty());
    grid_.reset(items_.size(), photos_in_row());
    return !error;
}

EditAlbumDialog::cell_t::cell_t(EditAlbumDialog& owner, size_t place)
    : photo_cell_t(owner.items_[place]), dialog(owner), index(place) {
    set_short_label(text_button, to_toolkit(owner.items_[place].name));
    set_wrapped_text(exif_label, "");
    text_button.signal_clicked().connect([this] { dialog.button_text(index); });
    rotation.signal_value_changed().connect([this] { dialog.button_rotate(index); });
}

std::vector<Gtk::Widget*> EditAlbumDialog::cell_t::widgets() {
    return {&picture, &text_button, &rotation, &exif_label};
}

void EditAlbumDialog::cell_t::fill() {
    is_loaded = load_exifthumbnail_or_thumbdir(preview, dialog.album_, dialog.items_[index].name);
    dialog.show_preview(*this);
    exif_label.set_text(photo_summary(dialog.album_, dialog.items_[index].name));
}

// As the update will leave it.
void EditAlbumDialog::show_preview(cell_t& cell) const {
    const photo_choice_t& item = items_[cell.index];
    if (cell.is_loaded) {
        cell.show_turned(cell.preview, planned_turn(album_, item.name, item.quarter_turns().value_or(0)), item.name);
    }
}

void EditAlbumDialog::update_comment() {
    texts_.show_comments_of(album_);
}

void EditAlbumDialog::button_text(unsigned long index) {
    int response = Gtk::RESPONSE_APPLY;
    while (response == Gtk::RESPONSE_APPLY) {
        TextInputDialog dialog(*this, album_, items_[index].name, false);
        response = dialog.run();
    }
}

void EditAlbumDialog::button_rotate(unsigned long index) {
    if (auto* const cell = dynamic_cast<cell_t*>(grid_.find(index))) {
        items_[index].angle = cell->rotation.get_value_as_int();
        show_preview(*cell);
    }
}

bool EditAlbumDialog::apply_rotate() {
    for (const photo_choice_t& item : items_) {
        const std::optional<unsigned long> turns = item.quarter_turns();
        if (!turns) {
            return false;
        }
        if (*turns != 0 && !rotateallsize(album_, item.name, *turns)) {
            libutils::report(item.name, ": rotate() failed.");
            return false;
        }
    }
    return true;
}

std::vector<files_t> EditAlbumDialog::selected_files() const {
    std::vector<files_t> files;
    files.reserve(items_.size());
    for (const photo_choice_t& item : items_) {
        files.push_back(item.chosen());
    }
    talolib::trace(std::cout, "selected_files.size(): ", files.size());
    return files;
}

void EditAlbumDialog::on_response(int response) {
    Gtk::Dialog::on_response(response);
    if ((response == Gtk::RESPONSE_OK || response == Gtk::RESPONSE_APPLY) && !updating_) {
        updating_ = true;
        save_texts();
        update_album();
        updating_ = false;
    }
}

void EditAlbumDialog::save_texts() {
    const comment_texts_t texts = texts_.texts();
    if (!texts_.unread().empty()) {
        show_error(*this, message_text(msg_comments_failed) + "\n" + texts_.unread());
    } else if (texts.title.empty()) {
        show_error(*this, msg_title_missing);
    } else if (!savecommenttxt(album_, texts.title, texts.head, texts.last)) {
        show_error(*this, msg_comments_failed);
    }
}

void EditAlbumDialog::update_album() {
    const std::vector<files_t> files = selected_files();
    progress_.begin(to_toolkit(album_));
    const update_result_t failure = apart::update_album(files, album_, progress_.signals());
    progress_.end();
    if (failure && !failure->is_only_stopped()) {
        libutils::report(album_, ": updatealbum() failed.");
        show_failure(*this, msg_album_failed, failure->reason, failure->file);
    }
}

void EditAlbumDialog::table_size_allocate(Gdk::Rectangle& allocation) {
    follow_table(scroller_, *this, allocation, longest_list);
}

}  // namespace taloram
