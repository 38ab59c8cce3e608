#include "dialogs/view_book_dialog.h"

#include <atkmm/object.h>
#include <gtkmm/buttonbox.h>

#include "album/album_layout.h"
#include "dialogs/browser.h"
#include "dialogs/raise_window.h"
#include "dialogs/table_scroller.h"
#include "dialogs/view_album_dialog.h"
#include "toolkit/text_encoding.h"

namespace taloram {

namespace {

constexpr int gap = 6;  // pixels between widgets

// Columns of the table.
enum column_t { name_column, open_column, count_column, title_column, head_column };

constexpr int widest_name = 30;  // characters
constexpr int widest_text = 40;

}  // namespace

ViewBookDialog::ViewBookDialog(Gtk::Window& parent, const std::string& book, const std::string& program_directory)
    : Gtk::Dialog("", parent, true), book_(book), program_directory_(program_directory) {
    make_viewer_window(*this, parent, 900, 600);
    texts_.load(book);
    set_title(texts_.title.get_text());

    Gtk::Box& content = *get_content_area();
    content.set_spacing(gap);
    content.pack_start(texts_.title, Gtk::PACK_SHRINK);
    content.pack_start(scrolled_text(texts_.head), Gtk::PACK_SHRINK);
    std::vector<book_entry_t> entries;
    if (!list_book_entries(entries, book) && !entries.empty()) {
        table_.set_row_spacing(gap / 3);
        table_.set_column_spacing(2 * gap);
        make_headings();
        for (const book_entry_t& entry : entries) {
            make_row(entry, static_cast<int>(rows_.size()) + 1);
        }
        scroller_.set_policy(Gtk::POLICY_AUTOMATIC, Gtk::POLICY_AUTOMATIC);
        scroller_.add(table_);
        content.pack_start(scroller_);
    } else {
        empty_.set_text(message_text(msg_empty_book));
        empty_.set_line_wrap();
        content.pack_start(empty_);
    }
    content.pack_start(scrolled_text(texts_.last), Gtk::PACK_SHRINK);
    make_buttons();
    show_all_children();
}

void ViewBookDialog::make_headings() {
    struct heading_t {
        column_t column;
        e_message_local_t text;
    };
    static constexpr heading_t headings[] = {{name_column, msg_directory_column},
                                             {count_column, msg_count_column},
                                             {title_column, msg_title},
                                             {head_column, msg_text_column}};
    for (const heading_t& heading : headings) {
        auto* const label = Gtk::manage(new Gtk::Label(message_text(heading.text)));
        label->set_xalign(0);
        label->get_style_context()->add_class("dim-label");
        table_.attach(*label, heading.column, 0);
    }
}

void ViewBookDialog::make_row(const book_entry_t& entry, int line) {
    rows_.push_back(std::make_unique<row_t>());
    row_t& row = *rows_.back();
    set_short_text(row.name, to_toolkit(entry.name), widest_name);
    set_short_text(row.count, to_toolkit(entry.count), widest_name);
    set_short_text(row.title, to_toolkit(entry.title), widest_text);
    set_short_text(row.head, to_toolkit(entry.head_line), widest_text);
    row.head.set_hexpand();
    for (Gtk::Label* label : {&row.name, &row.count, &row.title, &row.head}) {
        label->set_xalign(0);
    }
    row.open.set_label(message_text(entry.is_album ? msg_list : msg_open_book));
    row.open.get_accessible()->set_description(to_toolkit(entry.name));
    row.open.signal_clicked().connect([this, entry] { open_entry(entry); });
    table_.attach(row.name, name_column, line);
    table_.attach(row.open, open_column, line);
    table_.attach(row.count, count_column, line);
    table_.attach(row.title, title_column, line);
    table_.attach(row.head, head_column, line);
}

void ViewBookDialog::make_buttons() {
    std::string letters;
    for (const auto& [button, text] : {std::pair(&page_button_, msg_browser), std::pair(&close_button_, msg_close)}) {
        button->set_label(mnemonic_text(text, letters));
        button->set_use_underline();
        get_action_area()->add(*button);
    }
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
