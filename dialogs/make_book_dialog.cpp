#include "dialogs/make_book_dialog.h"

#include <gtkmm/box.h>
#include <gtkmm/filechooserdialog.h>
#include <gtkmm/label.h>
#include <gtkmm/stock.h>

#include <filesystem>
#include <iostream>

#include "album/album_layout.h"
#include "album/pages/book_index.h"
#include "album/texts/comment_store.h"
#include "libutils/diagnostics.h"
#include "libutils/files/directory.h"
#include "talolib/option.h"
#include "toolkit/text_encoding.h"
#include "widgets/message_box.h"
#include "widgets/table_scroller.h"
#include "widgets/window_keys.h"

namespace taloram {

namespace {

constexpr int label_width = 20;  // characters
constexpr int entry_width = 50;
constexpr int view_width = 300;  // pixels
constexpr int view_height = 100;
constexpr int spacing = 4;
constexpr unsigned border = 8;

Gtk::HBox& make_row(Gtk::Label& label, Gtk::Entry& entry) {
    auto* row = Gtk::manage(new Gtk::HBox(false, spacing));
    label.set_width_chars(label_width);
    entry.set_width_chars(entry_width);
    row->pack_start(label, Gtk::PACK_SHRINK);
    row->pack_start(entry);
    return *row;
}

// The path of `folder` from `directory` on, "" when it lies elsewhere or is that directory.
std::string name_inside(const std::string& folder, const std::string& directory) {
    std::error_code failure;
    const std::string name = std::filesystem::relative(folder, directory, failure).string();
    return failure || name == "." || name == ".." || name.starts_with("../") ? "" : name;
}

}  // namespace

MakeBookDialog::MakeBookDialog(Gtk::Window& parent, const std::string& directory)
    : Gtk::Dialog(message_text(msg_new_book), parent, true), directory_(directory) {
    build();
    name_.signal_focus_out_event().connect([this](GdkEventFocus*) { return button_update(); });
    directory_button_.signal_clicked().connect(sigc::mem_fun(*this, &MakeBookDialog::button_directory));
    show_all_children();
}

void MakeBookDialog::build() {
    std::string taken = stock_letters({Gtk::Stock::OK, Gtk::Stock::APPLY, Gtk::Stock::CANCEL});
    Gtk::HBox& name_row = make_row(caption(msg_book_name, name_, taken), name_);
    name_.set_activates_default(true);
    name_.get_accessible()->set_name(message_text(msg_book_name));
    directory_button_.set_label(mnemonic_text(msg_browse, taken));
    directory_button_.set_use_underline(true);
    name_row.pack_start(directory_button_, Gtk::PACK_SHRINK);

    Gtk::Box& content = *get_content_area();
    content.set_border_width(border);
    content.set_spacing(spacing);
    content.pack_start(name_row, Gtk::PACK_SHRINK);
    content.pack_start(make_row(caption(msg_title, fields_.title, taken), fields_.title), Gtk::PACK_SHRINK);
    fields_.head.set_size_request(view_width, view_height);
    content.pack_start(caption(msg_head_comment, fields_.head, taken), Gtk::PACK_SHRINK);
    content.pack_start(framed_text(fields_.head, view_height));
    fields_.last.set_size_request(view_width, view_height);
    content.pack_start(caption(msg_last_comment, fields_.last, taken), Gtk::PACK_SHRINK);
    content.pack_start(framed_text(fields_.last, view_height));
    add_button(Gtk::Stock::OK, Gtk::RESPONSE_OK);
    add_button(Gtk::Stock::APPLY, Gtk::RESPONSE_APPLY);
    add_button(Gtk::Stock::CANCEL, Gtk::RESPONSE_CANCEL);
    set_default_response(Gtk::RESPONSE_OK);
    add_window_keys(*this);
}

std::string MakeBookDialog::get_bookdir() const {
    const Glib::ustring name = name_.get_text();
    if (name.empty()) {
        return directory_;
    }
    return directory_ + "/" + chosen_.bytes(name);
}

bool MakeBookDialog::button_update() {
    fields_.fill_comments_of(get_bookdir());
    show_all_children();
    return true;
}

void MakeBookDialog::button_directory() {
    Gtk::FileChooserDialog chooser(*this, message_text(msg_source_directory), Gtk::FILE_CHOOSER_ACTION_SELECT_FOLDER);
    chooser.add_button(Gtk::Stock::OPEN, Gtk::RESPONSE_OK);
    chooser.add_button(Gtk::Stock::CANCEL, Gtk::RESPONSE_CANCEL);
    chooser.set_default_response(Gtk::RESPONSE_OK);
    const std::string start = get_bookdir();
    chooser.set_current_folder(is_exist(start) ? start : directory_);
    if (chooser.run() != Gtk::RESPONSE_OK) {
        return;
    }
    chooser.hide();
    take_folder(chooser.get_filename());
}

void MakeBookDialog::take_folder(const std::string& folder) {
    const std::string name = name_inside(folder, directory_);
    if (name.empty()) {
        show_error(*this, message_text(msg_outside_book) + "\n" + to_toolkit(directory_));
        return;
    }
    name_.set_text(chosen_.keep(name));
    button_update();
}

void MakeBookDialog::on_response(int response) {
    Gtk::Dialog::on_response(response);
    if (response == Gtk::RESPONSE_OK || response == Gtk::RESPONSE_APPLY) {
        store();
    }
}

void MakeBookDialog::store() {
    bookdir_ = get_bookdir();
    texts_ = fields_.texts();
    is_made_ = !empty() && save_texts();
    if (is_made_ && !makehtmlbook(bookdir_)) {
        libutils::report("makehtmlindex() failed.");
    }
}

bool MakeBookDialog::save_texts() {
    if (is_album(bookdir_)) {
        show_error(*this, msg_names_an_album);
        return false;
    }
    const libutils::first_report_t heard;
    libutils::mkdir(bookdir_.c_str());
    talolib::trace(std::cout, bookdir_, ": mkdired.");
    if (!savecommenttxt(bookdir_, texts_.title, texts_.head, texts_.last)) {
        show_failure(*this, msg_comments_failed, heard.line());
        return false;
    }
    return true;
}

}  // namespace taloram
