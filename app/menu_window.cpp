#include "app/menu_window.h"

#include <cstdlib>
#include <iostream>

#include "album/album_layout.h"
#include "album/comment_store.h"
#include "app/command_line.h"
#include "dialogs/browser.h"
#include "dialogs/edit_book_dialog.h"
#include "dialogs/global_option_dialog.h"
#include "dialogs/message_box.h"
#include "dialogs/raise_window.h"
#include "dialogs/shell_command.h"
#include "dialogs/table_scroller.h"
#include "dialogs/view_album_dialog.h"
#include "dialogs/view_book_dialog.h"
#include "libutils/path.h"
#include "settings/settings.h"
#include "settings/settings_file.h"
#include "shooting_data/exif_summary.h"
#include "talolib/message.h"
#include "talolib/option.h"
#include "toolkit/text_encoding.h"

namespace taloram {

namespace {

constexpr int text_height = 80;     // pixels
constexpr int default_width = 800;  // pixels
constexpr unsigned border = 8;      // pixels

// Columns of the list; the second stays empty.
enum column_t : guint {
    name_column = 0,
    open_column = 2,
    viewer_column,
    count_column,
    title_column,
    head_column,
    column_count
};

void attach(Gtk::Table& table, Gtk::Widget& widget, guint column, size_t row) {
    const auto top = static_cast<guint>(row);
    widget.set_margin_end(6);  // the table has more columns than widgets, so it has no spacing of its own
    table.attach(widget, column, column + 1, top, top + 1, Gtk::FILL | Gtk::EXPAND, Gtk::FILL | Gtk::EXPAND, 0, 0);
}

// Every row has the same buttons; what reads the window aloud needs to tell them apart.
void label_row_button(Gtk::Button& button, e_message_local_t text, const std::string& name) {
    button.set_label(message_text(text));
    button.get_accessible()->set_name(message_text(text) + " " + to_toolkit(name));
}

}  // namespace

MenuWindow::MenuWindow(int argc, char** argv)
    : argc_(argc),
      argv_(argv),
      program_directory_(libutils::dirname(argv[0])),
      program_name_(libutils::basename(argv[0])) {
    library_directory_ = libutils::dirname(talolib::init_message(program_directory_.c_str(), program_name_.c_str()));
    load_settings();
    initexif(program_directory_.c_str(), program_name_.c_str());
    apply_command_line();
    pack_widgets();
    set_up_buttons();
    set_title(to_toolkit(talolib::make_title(getmsg(msg_program), getmsg(msg_program_purpose))));
    set_default_size(default_width, -1);
    show_all_children();
    (items_.empty() ? edit_button_ : items_.front().open_button).grab_focus();
}

void MenuWindow::load_settings() {
    if (loadini(library_directory_.c_str(), program_name_.c_str())) {
        return;
    }
    on_btn_clicked_optionsetting();
    const bool is_loaded = loadini(library_directory_.c_str(), program_name_.c_str());
    talolib::trace(std::cout, "optionsetting end.");
    if (!is_loaded) {
        std::exit(EXIT_SUCCESS);
    }
}

void MenuWindow::apply_command_line() {
    const command_line_t line = parse_command_line(argc_, argv_);
    if (line.wants_usage) {
        usage(argv_[0]);
        std::exit(EXIT_SUCCESS);
    }
    if (line.has_paths) {
        g_global.from = line.from;
        g_global.album = line.album;
        talolib::trace(std::cout, g_global.from);
        talolib::trace(std::cout, g_global.album);
    }
}

void MenuWindow::pack_widgets() {
    for (Gtk::TextView* view : {&head_view_, &last_view_}) {
        view->set_editable(false);
        view->set_cursor_visible(false);
    }
    head_view_.get_accessible()->set_name(message_text(msg_head_comment));
    last_view_.get_accessible()->set_name(message_text(msg_last_comment));
    box_.pack_start(title_label_, Gtk::PACK_EXPAND_WIDGET, 0);
    box_.pack_start(framed_text(head_view_, text_height), Gtk::PACK_EXPAND_WIDGET, 0);
    box_.pack_start(scroller_, Gtk::PACK_EXPAND_WIDGET, 0);
    table_.set_row_spacings(2);
    scroller_.add(table_);
    refresh();
    box_.pack_start(framed_text(last_view_, text_height), Gtk::PACK_EXPAND_WIDGET, 0);
    table_.signal_size_allocate().connect(sigc::mem_fun(*this, &MenuWindow::table_size_allocate));
    for (Gtk::Button* button : {&close_button_, &edit_button_, &option_button_, &browser_button_}) {
        button_row_.pack_end(*button, Gtk::PACK_SHRINK);
    }
    button_row_.set_valign(Gtk::ALIGN_END);
    box_.pack_start(button_row_, Gtk::PACK_EXPAND_WIDGET);
    box_.set_border_width(border);
    add(box_);
}

void MenuWindow::set_up_buttons() {
    struct button_t {
        Gtk::Button& button;
        e_message_local_t text;
        void (MenuWindow::*handler)();
    };
    const button_t buttons[] = {
        {browser_button_, msg_browser, &MenuWindow::on_btn_clicked_run_browser},
        {option_button_, msg_options, &MenuWindow::on_btn_clicked_optionsetting},
        {edit_button_, msg_edit, &MenuWindow::on_btn_clicked_edit},
        {move_button_, msg_move, &MenuWindow::on_btn_clicked_move},
        {delete_button_, msg_delete, &MenuWindow::on_btn_clicked_delete},
        {close_button_, msg_close, &MenuWindow::on_btn_clicked_close},
    };
    std::string mnemonics;
    for (const button_t& b : buttons) {
        b.button.set_label(mnemonic_text(b.text, mnemonics));
        b.button.set_use_underline(true);
        b.button.signal_clicked().connect(sigc::mem_fun(*this, b.handler));
    }
}

bool MenuWindow::make_items() {
    items_.clear();
    table_.resize(1, 1);
    if (advice_.get_parent() != nullptr) {
        table_.remove(advice_);
    }
    show_comments();
    std::vector<book_entry_t> entries;
    if (!list_entries(entries, g_global.album)) {
        show_advice(msg_no_directory);
        return false;
    }
    if (entries.empty()) {
        show_advice(msg_no_albums);
    }
    items_.reserve(entries.size());
    table_.resize(column_count, static_cast<guint>(entries.size()) + 1);
    for (const book_entry_t& entry : entries) {
        fill_item(items_.emplace_back(), entry);
        attach_item(items_.size() - 1);
    }
    return true;
}

void MenuWindow::show_comments() {
    std::string title;
    std::string head;
    std::string last;
    loadcommenttxt(g_global.album, title, head, last);
    set_short_text(title_label_, to_toolkit(title), 100);
    title_label_.set_xalign(0.5);
    head_view_.get_buffer()->set_text(to_toolkit(head));
    last_view_.get_buffer()->set_text(to_toolkit(last));
}

void MenuWindow::fill_item(item_t& item, const book_entry_t& entry) {
    item.is_album = entry.is_album;
    item.path = entry.path;
    label_row_button(item.open_button, entry.is_album ? msg_list : msg_open_book, entry.name);
    label_row_button(item.viewer_button, msg_viewer, entry.name);
    set_short_text(item.name_label, to_toolkit(entry.name), 24);
    set_short_text(item.count_label, to_toolkit(entry.count), 16);
    set_short_text(item.title_label, to_toolkit(entry.title), 28);
    set_short_text(item.head_label, to_toolkit(entry.head_line), 32);
}

void MenuWindow::attach_item(size_t index) {
    item_t& item = items_[index];
    attach(table_, item.name_label, name_column, index);
    attach(table_, item.open_button, open_column, index);
    attach(table_, item.count_label, count_column, index);
    attach(table_, item.title_label, title_column, index);
    attach(table_, item.head_label, head_column, index);
    item.open_button.signal_clicked().connect(
        sigc::bind(sigc::mem_fun(*this, &MenuWindow::on_btn_clicked_itembutton), index));
    if (item.is_album) {
        attach(table_, item.viewer_button, viewer_column, index);
        item.viewer_button.signal_clicked().connect(
            sigc::bind(sigc::mem_fun(*this, &MenuWindow::on_btn_clicked_talovue3), index));
    }
}

void MenuWindow::show_advice(e_message_local_t text) {
    advice_.set_text(message_text(text));
    advice_.set_line_wrap(true);
    advice_.set_max_width_chars(60);
    advice_.set_margin_top(24);
    advice_.set_margin_bottom(24);
    table_.attach(advice_, 0, column_count, 0, 1);
}

// An album directory that can't be listed is told in the list's place.
void MenuWindow::refresh() {
    static_cast<void>(make_items());
    show_all_children();
}

void MenuWindow::table_size_allocate(Gdk::Rectangle& allocation) {
    follow_table(scroller_, *this, allocation, longest_list);
}

void MenuWindow::on_btn_clicked_run_browser() {
    open_in_browser(*this, entry_path(g_global.album, layout::index_page));
}

void MenuWindow::on_btn_clicked_optionsetting() {
    {
        GlobalOptionDialog dialog(*this, program_directory_.c_str(), program_name_.c_str());
        int response = Gtk::RESPONSE_NONE;
        do {
            response = dialog.run();
        } while (response != Gtk::RESPONSE_CANCEL && response != Gtk::RESPONSE_OK &&
                 response != Gtk::RESPONSE_DELETE_EVENT);
    }
    refresh();
}

void MenuWindow::on_btn_clicked_edit() {
    edit_book(*this, g_global.album);
    refresh();
    raise_window(*this);
}

void MenuWindow::on_btn_clicked_itembutton(size_t index) {
    const std::string path = items_[index].path;
    if (is_album(path)) {
        ViewAlbumDialog(*this, path, program_directory_).run();
    } else {
        ViewBookDialog(*this, path, program_directory_).run();
    }
    raise_window(*this);
}

void MenuWindow::on_btn_clicked_talovue3(size_t index) {
    const std::string images = entry_path(items_[index].path, level_name(1));
    if (is_exist(images) && !run_viewer(program_directory_, images)) {
        show_error(*this, msg_no_viewer);
    }
    raise_window(*this);
}

void MenuWindow::on_btn_clicked_close() {
    std::exit(EXIT_SUCCESS);
}

void MenuWindow::on_btn_clicked_move() {
}

void MenuWindow::on_btn_clicked_delete() {
}

}  // namespace taloram
