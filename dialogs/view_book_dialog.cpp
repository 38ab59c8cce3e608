#include "dialogs/view_book_dialog.h"

#include <atkmm/object.h>
#include <gtkmm/buttonbox.h>

#include "album/album_layout.h"
#include "dialogs/originals_dialog.h"
#include "dialogs/view_album_dialog.h"
#include "toolkit/text_encoding.h"
#include "widgets/browser.h"
#include "widgets/raise_window.h"
#include "widgets/window_keys.h"

namespace taloram {

namespace {

constexpr int gap = 6;  // pixels between widgets

// Columns of the table.
enum column_t : guint { name_column, open_column, count_column, title_column, head_column };

}  // namespace

ViewBookDialog::ViewBookDialog(Gtk::Window& parent, const std::string& book, const std::string& program_directory)
    : Gtk::Dialog("", parent, true), book_(book), program_directory_(program_directory) {
    add_quit_keys(*this);
    make_viewer_window(*this, parent, "book viewer", 900, 600);
    texts_.load(book);
    set_title(texts_.title.get_text());

    Gtk::Box& content = *get_content_area();
    content.set_spacing(gap);
    content.pack_start(texts_.title, Gtk::PACK_SHRINK);
    content.pack_start(scrolled_text(texts_.head), Gtk::PACK_SHRINK);
    const bool is_listed = !list_book_entries(entries_, book);
    if (!entries_.empty()) {
        show_entries(content);
    } else {
        empty_.set_text(is_listed ? message_text(msg_empty_book)
                                  : message_text(msg_not_opened) + "\n" + to_toolkit(book));
        empty_.set_line_wrap();
        content.pack_start(empty_);
    }
    content.pack_start(scrolled_text(texts_.last), Gtk::PACK_SHRINK);
    make_buttons();
    show_all_children();
}

void ViewBookDialog::show_entries(Gtk::Box& content) {
    widths_ = widths_of(entries_);
    rows_.add_headings({{name_column, msg_directory_column},
                        {count_column, msg_count_column},
                        {title_column, msg_title},
                        {head_column, msg_text_column}});
    content.pack_start(rows_.headings(), Gtk::PACK_SHRINK);
    table_.resize(static_cast<guint>(entries_.size()), head_column + 1);
    table_.set_row_spacings(gap / 3);
    scroller_.set_policy(Gtk::POLICY_AUTOMATIC, Gtk::POLICY_AUTOMATIC);
    scroller_.add(table_);
    content.pack_start(scroller_);
    rows_.set_rows(entries_.size());
}

void ViewBookDialog::make_row(size_t index) {
    const book_entry_t& entry = entries_[index];
    auto* open = Gtk::manage(new Gtk::Button(message_text(entry.is_album ? msg_list : msg_open_book)));
    open->get_accessible()->set_description(to_toolkit(entry.name));
    open->signal_clicked().connect([this, index] { open_entry(entries_[index]); });
    rows_.attach(text_cell(to_toolkit(entry.name), widths_.name), name_column, index);
    rows_.attach(*open, open_column, index);
    rows_.attach(text_cell(to_toolkit(entry.count), widths_.count), count_column, index);
    rows_.attach(text_cell(to_toolkit(entry.title), widths_.title), title_column, index);
    rows_.attach(text_cell(shown_head(entry), widths_.head), head_column, index);
}

void ViewBookDialog::make_buttons() {
    std::string letters;
    for (const auto& [button, text] : {std::pair(&page_button_, msg_browser), std::pair(&close_button_, msg_close),
                                       std::pair(&check_button_, msg_check_originals)}) {
        button->set_label(mnemonic_text(text, letters));
        button->set_use_underline();
        get_action_area()->add(*button);
    }
    get_action_area()->reorder_child(check_button_, 0);
    check_button_.signal_clicked().connect([this] { show_originals_check(*this, progress_, book_); });
    page_button_.signal_clicked().connect([this] { open_in_browser(*this, entry_path(book_, layout::index_page)); });
    close_button_.signal_clicked().connect([this] { response(Gtk::RESPONSE_CLOSE); });
}

void ViewBookDialog::open_entry(const book_entry_t& entry) {
    if (entry.is_album) {
        ViewAlbumDialog(*this, entry.path, program_directory_).run();
    } else {
        ViewBookDialog(*this, entry.path, program_directory_).run();
    }
    raise_window(*this);
}

}  // namespace taloram
