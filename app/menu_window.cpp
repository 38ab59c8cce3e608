#include "app/menu_window.h"

#include <cstdlib>
#include <iostream>

#include "album/album_layout.h"
#include "album/import/card_source.h"
#include "album/shell_command.h"
#include "album/texts/comment_store.h"
#include "app/command_line.h"
#include "dialogs/edit_book_dialog.h"
#include "dialogs/global_option_dialog.h"
#include "dialogs/view_album_dialog.h"
#include "dialogs/view_book_dialog.h"
#include "libutils/files/path.h"
#include "libutils/files/system_path.h"
#include "libutils/text/text.h"
#include "settings/settings.h"
#include "settings/settings_file.h"
#include "shooting_data/exif_summary.h"
#include "talolib/message.h"
#include "talolib/option.h"
#include "toolkit/text_encoding.h"
#include "toolkit/window_preferences.h"
#include "widgets/browser.h"
#include "widgets/folder_drop.h"
#include "widgets/guide.h"
#include "widgets/message_box.h"
#include "widgets/raise_window.h"
#include "widgets/table_scroller.h"
#include "widgets/window_keys.h"

namespace taloram {

namespace {

constexpr int text_height = 80;     // pixels
constexpr int default_width = 800;  // pixels
constexpr unsigned border = 8;      // pixels
constexpr int spacing = 6;          // pixels

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

// Every row has the same buttons; what reads the window aloud needs to tell them apart.
Gtk::Button& row_button(e_message_local_t text, const std::string& name) {
    auto* button = Gtk::manage(new Gtk::Button(message_text(text)));
    button->get_accessible()->set_name(message_text(text) + " " + to_toolkit(name));
    return *button;
}

}  // namespace

MenuWindow::MenuWindow(int argc, char** argv)
    : argc_(argc),
      argv_(argv),
      program_directory_(libutils::directory_part(argv[0])),
      program_name_(libutils::basename(argv[0])) {
    library_directory_ =
        libutils::directory_part(talolib::init_message(program_directory_.c_str(), program_name_.c_str()));
    g_guide = program_directory_ + "guide.html";
    load_settings();
    initexif(program_directory_.c_str(), program_name_.c_str());
    apply_command_line();
    pack_widgets();
    set_up_buttons();
    set_title(to_toolkit(talolib::make_title(getmsg(msg_program), getmsg(msg_program_purpose))));
    set_default_size(default_width, -1);
    keep_size(*this, "main window");
    add_quit_keys(*this);
    accept_folder(*this, [this](const std::string& directory) { take_source(directory); });
    show_all_children();
    edit_button_.grab_focus();
    rows_.grab_focus(open_column);
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
        g_stored_paths = {g_global.from, g_global.album};
        g_global.from = line.from;
        g_global.album = line.album;
        talolib::trace(std::cout, g_global.from);
        talolib::trace(std::cout, g_global.album);
    }
    if (!line.card.empty()) {
        take_source(card_source(line.card));
    }
}

void MenuWindow::pack_widgets() {
    head_view_.get_accessible()->set_name(message_text(msg_head_comment));
    last_view_.get_accessible()->set_name(message_text(msg_last_comment));
    // What a larger window has more is the list's.
    box_.pack_start(title_label_, Gtk::PACK_SHRINK);
    box_.pack_start(plain_text(head_view_, text_height), Gtk::PACK_SHRINK);
    box_.pack_start(rows_.headings(), Gtk::PACK_SHRINK);
    box_.pack_start(scroller_, Gtk::PACK_EXPAND_WIDGET, 0);
    rows_.add_headings({{name_column, msg_directory_column},
                        {count_column, msg_count_column},
                        {title_column, msg_title},
                        {head_column, msg_text_column}});
    table_.set_row_spacings(2);
    scroller_.add(table_);
    refresh();
    box_.pack_start(plain_text(last_view_, text_height), Gtk::PACK_SHRINK);
    table_.signal_size_allocate().connect(sigc::mem_fun(*this, &MenuWindow::table_size_allocate));
    for (Gtk::Button* button : {&close_button_, &edit_button_, &option_button_, &browser_button_}) {
        button_row_.pack_end(*button, Gtk::PACK_SHRINK);
    }
    button_row_.pack_start(help_menu_, Gtk::PACK_SHRINK);
    source_label_.set_no_show_all();
    source_label_.set_xalign(0);
    source_label_.set_ellipsize(Pango::ELLIPSIZE_MIDDLE);
    source_label_.set_margin_start(spacing);
    button_row_.pack_start(source_label_);
    button_row_.set_margin_top(spacing);
    box_.pack_start(button_row_, Gtk::PACK_SHRINK);
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
    if (advice_.get_parent() != nullptr) {
        table_.remove(advice_);
    }
    show_comments();
    const bool is_listed = !list_book_entries(items_, g_global.album);
    show_items();
    if (items_.empty()) {
        show_advice(is_listed ? msg_no_albums : msg_no_directory);
    }
    return is_listed;
}

void MenuWindow::show_comments() {
    comment_texts_t texts;
    const unread_text_t unread = load_comments(texts, g_global.album);
    set_short_text(title_label_, to_toolkit(texts.title), 100);
    title_label_.set_xalign(0.5);
    for (std::string* text : {&texts.head, &texts.last}) {
        libutils::chop2(*text);  // line ends after the last line would be empty lines of the window
    }
    head_view_.get_buffer()->set_text(unread ? message_text(msg_text_unreadable) + "\n" + to_toolkit(unread.path)
                                             : to_toolkit(texts.head));
    last_view_.get_buffer()->set_text(to_toolkit(texts.last));
}

void MenuWindow::show_items() {
    widths_ = widths_of(items_);
    table_.resize(static_cast<guint>(items_.size()) + 1, column_count);
    rows_.set_rows(items_.size());
}

void MenuWindow::make_row(size_t index) {
    const book_entry_t& entry = items_[index];
    rows_.attach(text_cell(to_toolkit(entry.name), widths_.name), name_column, index);
    Gtk::Button& open = row_button(entry.is_album ? msg_list : msg_open_book, entry.name);
    open.signal_clicked().connect([this, index] { on_btn_clicked_itembutton(index); });
    rows_.attach(open, open_column, index);
    if (entry.is_album) {
        Gtk::Button& viewer = row_button(msg_viewer, entry.name);
        viewer.signal_clicked().connect([this, index] { on_btn_clicked_talovue3(index); });
        rows_.attach(viewer, viewer_column, index);
    }
    rows_.attach(text_cell(to_toolkit(entry.count), widths_.count), count_column, index);
    rows_.attach(text_cell(to_toolkit(entry.title), widths_.title), title_column, index);
    rows_.attach(text_cell(shown_head(entry), widths_.head), head_column, index);
}

void MenuWindow::show_advice(e_message_local_t text) {
    advice_.set_text(message_text(text));
    advice_.set_line_wrap(true);
    advice_.set_max_width_chars(60);
    advice_.set_margin_top(24);
    advice_.set_margin_bottom(24);
    table_.attach(advice_, 0, column_count, 0, 1);
}

void MenuWindow::take_source(const std::string& directory) {
    if (!g_stored_paths.from) {
        g_stored_paths.from = g_global.from;
    }
    g_global.from = directory;
    source_ = directory;
    show_source();
}

// Until another one is chosen in the options.
void MenuWindow::show_source() {
    const Glib::ustring text = message_text(msg_source_now) + " " + to_toolkit(source_);
    source_label_.set_text(text);
    source_label_.set_tooltip_text(text);
    source_label_.set_visible(!source_.empty() && g_global.from == source_);
}

// An album directory that can't be listed is told in the list's place.
void MenuWindow::refresh() {
    static_cast<void>(make_items());
    show_source();
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
    const std::string& album = items_[index].path;
    // An album of small photographs only has no such size, and the viewer is given the album's own directory.
    const std::string size = entry_path(album, level_name(1));
    const std::string images = is_exist(size) ? size : album;
    std::vector<std::string> photos;
    if (images != size) {
        static_cast<void>(list_photos(photos, album));
    }
    if ((images == size || !photos.empty()) && !run_viewer(program_directory_, images)) {
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
