#include "dialogs/edit_book_dialog.h"

#include <gtkmm/stock.h>

#include <algorithm>
#include <map>

#include "album/apart.h"
#include "album/pages/book_index.h"
#include "album/shell_command.h"
#include "album/texts/comment_store.h"
#include "dialogs/edit_album_dialog.h"
#include "dialogs/import_run.h"
#include "dialogs/make_book_dialog.h"
#include "libutils/diagnostics.h"
#include "libutils/files/system_path.h"
#include "toolkit/text_encoding.h"
#include "widgets/message_box.h"
#include "widgets/raise_window.h"
#include "widgets/removal.h"
#include "widgets/table_scroller.h"
#include "widgets/window_keys.h"

namespace taloram {

namespace {

constexpr unsigned row_spacing = 2;  // pixels
constexpr int spacing = 4;
constexpr unsigned border = 8;
constexpr int view_height = 60;
constexpr int widest_name = 24;  // characters

// Columns of the list; the second stays empty.
enum column_t : guint {
    name_column = 0,
    open_column = 2,
    count_column,
    title_column,
    head_column,
    remove_column,
    columns
};

}  // namespace

EditBookDialog::EditBookDialog(Gtk::Window& parent, const std::string& bookdir)
    : Gtk::Dialog(message_text(msg_edit) + " - " + to_toolkit(libutils::directory_name(bookdir)), parent, true),
      book_directory_(bookdir),
      table_(1, 1, false),
      progress_(*this) {
    build();
    table_.signal_size_allocate().connect(sigc::mem_fun(*this, &EditBookDialog::table_size_allocate));
    show_all_children();
}

void EditBookDialog::build() {
    std::string taken = stock_letters({Gtk::Stock::OK, Gtk::Stock::APPLY, Gtk::Stock::CANCEL});
    Gtk::Box& content = *get_content_area();
    content.set_border_width(border);
    content.set_spacing(spacing);
    content.pack_start(caption(msg_title, fields_.title, taken), Gtk::PACK_SHRINK);
    content.pack_start(fields_.title, Gtk::PACK_SHRINK);
    content.pack_start(caption(msg_head_comment, fields_.head, taken), Gtk::PACK_SHRINK);
    content.pack_start(framed_text(fields_.head, view_height), Gtk::PACK_SHRINK);
    table_.set_row_spacings(row_spacing);
    hint_.set_line_wrap(true);
    scroller_.set_policy(Gtk::POLICY_AUTOMATIC, Gtk::POLICY_AUTOMATIC);
    scroller_.add(table_);
    rows_.add_headings({{name_column, msg_directory_column},
                        {count_column, msg_count_column},
                        {title_column, msg_title},
                        {head_column, msg_text_column}});
    content.pack_start(rows_.headings(), Gtk::PACK_SHRINK);
    content.pack_start(scroller_);
    make_items();
    content.pack_start(caption(msg_last_comment, fields_.last, taken), Gtk::PACK_SHRINK);
    content.pack_start(framed_text(fields_.last, view_height), Gtk::PACK_SHRINK);
    add_button(mnemonic_text(msg_new_book, taken), new_book);
    add_button(mnemonic_text(msg_new_album, taken), new_album);
    add_button(mnemonic_text(msg_rebuild, taken), rebuild);
    add_button(Gtk::Stock::OK, Gtk::RESPONSE_OK);
    add_button(Gtk::Stock::APPLY, Gtk::RESPONSE_APPLY);
    add_button(Gtk::Stock::CANCEL, Gtk::RESPONSE_CANCEL);
    set_default_response(Gtk::RESPONSE_OK);
    add_window_keys(*this);
}

void EditBookDialog::table_size_allocate(Gdk::Rectangle& allocation) {
    follow_table(scroller_, *this, allocation, longest_list);
}

bool EditBookDialog::make_items() {
    std::map<std::string, Glib::ustring> typed_names;
    for (const item_t& item : items_) {
        if (item.is_renamed()) {
            typed_names[item.entry.name] = item.typed_name;
        }
    }
    if (hint_.get_parent() != nullptr) {
        table_.remove(hint_);
    }
    fields_.show_comments_of(book_directory_);
    std::vector<book_entry_t> entries;
    const bool listed = !list_book_entries(entries, book_directory_);
    widths_ = widths_of(entries);
    items_.clear();
    for (book_entry_t& entry : entries) {
        item_t& item = items_.emplace_back();
        item.typed_name = item.shown_name.keep(entry.name);
        if (const auto typed = typed_names.find(entry.name); typed != typed_names.end()) {
            item.typed_name = typed->second;
        }
        item.entry = std::move(entry);
    }
    table_.resize(std::max(static_cast<guint>(items_.size()), 1U), columns);
    rows_.set_rows(items_.size());
    if (items_.empty()) {
        hint_.set_text(listed ? message_text(msg_book_without_entries)
                              : message_text(msg_not_opened) + "\n" + to_toolkit(book_directory_));
        table_.attach(hint_, 0, 1, 0, 1);
    }
    return listed;
}

void EditBookDialog::make_row(size_t index) {
    const book_entry_t& entry = items_[index].entry;
    const auto button = [&](e_message_local_t text, void (EditBookDialog::*pressed)(size_t)) -> Gtk::Button& {
        auto* made = Gtk::manage(new Gtk::Button(message_text(text)));
        made->get_accessible()->set_name(message_text(text) + " " + to_toolkit(entry.name));
        made->signal_clicked().connect(sigc::bind(sigc::mem_fun(*this, pressed), index));
        return *made;
    };
    rows_.attach(name_entry(index), name_column, index);
    rows_.attach(button(entry.is_album ? msg_list : msg_edit, &EditBookDialog::button_list), open_column, index);
    rows_.attach(text_cell(to_toolkit(entry.count), widths_.count), count_column, index);
    rows_.attach(text_cell(to_toolkit(entry.title), widths_.title), title_column, index);
    rows_.attach(text_cell(shown_head(entry), widths_.head), head_column, index);
    rows_.attach(button(msg_remove, &EditBookDialog::button_remove), remove_column, index);
}

Gtk::Entry& EditBookDialog::name_entry(size_t index) {
    const Glib::ustring name = to_toolkit(items_[index].entry.name);
    auto* entry = Gtk::manage(new Gtk::Entry);
    entry->set_text(items_[index].typed_name);
    entry->set_width_chars(widest_name);
    entry->set_tooltip_text(name);
    entry->set_activates_default(true);
    entry->get_accessible()->set_name(message_text(msg_directory_column) + " " + name);
    entry->signal_changed().connect([this, entry, index] { items_[index].typed_name = entry->get_text(); });
    return *entry;
}

void EditBookDialog::refresh() {
    make_items();
    show_all_children();
}

void EditBookDialog::on_response(int response) {
    Gtk::Dialog::on_response(response);
    switch (response) {
        case Gtk::RESPONSE_OK:
        case Gtk::RESPONSE_APPLY:
            save(false);
            break;
        case rebuild:
            save(true);
            break;
        case new_book:
            make_book();
            break;
        case new_album:
            make_album();
            break;
        default:
            break;
    }
}

// A rebuild of the book brings up to date every album and page that the rows stand for, and ends with the book's own
// page: one walk does what one walk for each row and one more for the book would.
void EditBookDialog::save(bool rebuild_all) {
    save_texts();
    rename_items();
    if (!rewrite_page()) {
        return;
    }
    refresh();
    if (rebuild_all) {
        batchupdate(book_directory_);
    }
}

void EditBookDialog::save_texts() {
    const comment_texts_t texts = fields_.texts();
    const libutils::first_report_t heard;
    if (!fields_.unread().empty()) {
        show_error(*this, message_text(msg_comments_failed) + "\n" + fields_.unread());
    } else if (empty()) {
        show_error(*this, msg_title_missing);
    } else if (savecommenttxt(book_directory_, texts.title, texts.head, texts.last)) {
        fields_.accept();
    } else {
        show_failure(*this, msg_comments_failed, heard.line());
    }
}

// A name that another row gives up becomes free when that row had its turn, so the rest is tried again as long as
// something moves.
void EditBookDialog::rename_items() {
    std::vector<item_t*> renamed;
    for (item_t& item : items_) {
        if (item.is_renamed()) {
            renamed.push_back(&item);
        }
    }
    const auto rename_one = [this](item_t* item) {
        const std::string name = from_toolkit(item->typed_name);
        if (rename_entry(book_directory_, item->entry.name, name) != rename_result_t::done) {
            return false;
        }
        item->entry.name = name;
        item->entry.path = entry_path(book_directory_, name);
        item->typed_name = item->shown_name.keep(name);
        return true;
    };
    while (std::erase_if(renamed, rename_one) > 0) {
    }
    for (const item_t* item : renamed) {
        show_error(*this, message_text(msg_rename_refused) + "\n" + to_toolkit(item->entry.name) + " \u2192 " +
                              item->typed_name);
    }
}

bool EditBookDialog::rewrite_page() {
    const libutils::first_report_t heard;
    if (makehtmlbook(book_directory_)) {
        return true;
    }
    libutils::report(book_directory_, ": makehtmlbook() failed.");
    show_failure(*this, msg_update_failed, heard.line());
    return false;
}

void EditBookDialog::make_book() {
    MakeBookDialog dialog(*this, book_directory_);
    for (;;) {
        const int response = dialog.run();
        switch (response) {
            case Gtk::RESPONSE_OK:
            case Gtk::RESPONSE_APPLY:
                if (dialog.empty()) {
                    show_error(dialog, message_text(msg_title_missing) + "\n" + message_text(msg_book_name_missing));
                } else if (response == Gtk::RESPONSE_OK && dialog.is_made()) {
                    refresh();
                    return;
                }
                break;
            case Gtk::RESPONSE_CANCEL:
            case Gtk::RESPONSE_DELETE_EVENT:
            case Gtk::RESPONSE_NONE:
                return;
            default:
                break;
        }
    }
}

void EditBookDialog::make_album() {
    const std::optional<album_order_t> order = ask_for_album(*this, progress_, book_directory_);
    if (order && run_import(*this, progress_, *order)) {
        refresh();
    }
}

bool EditBookDialog::batchupdate(const std::string& path) {
    progress_.begin(to_toolkit(path));
    const update_result_t failure = apart::update_all(path, update_options_t(), progress_.signals());
    progress_.end();
    if (failure && !failure->is_only_stopped()) {
        show_failure(*this, msg_update_failed, failure->reason, failure->file);
    }
    return !failure;
}

// The list is rebuilt below, and with it the row whose button was clicked.
void EditBookDialog::button_list(size_t index) {
    const std::string path = items_[index].entry.path;
    if (is_import_interrupted(path) && ask_yes_no(*this, msg_complete_album)) {
        batchupdate(path);
    }
    if (!is_exist(entry_path(path, layout::thumb))) {
        edit_book(*this, path);
        refresh();
    } else {
        EditAlbumDialog dialog(*this, path);
        int response = Gtk::RESPONSE_NONE;
        do {
            response = dialog.run();
            if (response == Gtk::RESPONSE_APPLY || response == Gtk::RESPONSE_OK) {
                refresh();
            }
        } while (response == Gtk::RESPONSE_APPLY);
    }
    raise_window(*this);
}

void EditBookDialog::button_remove(size_t index) {
    const std::string path = items_[index].entry.path;
    if (ask_and_remove(*this, path) && rewrite_page()) {
        refresh();
    }
}

void edit_book(Gtk::Window& parent, const std::string& directory) {
    comment_fields_t::drafts_t drafts;
    for (;;) {
        EditBookDialog dialog(parent, directory);
        dialog.restore(drafts);
        switch (dialog.run()) {
            case EditBookDialog::new_book:
            case EditBookDialog::new_album:
            case EditBookDialog::rebuild:
            case Gtk::RESPONSE_APPLY:
                break;
            case Gtk::RESPONSE_OK:
                if (!dialog.empty()) {
                    return;
                }
                break;
            default:
                return;
        }
        drafts = dialog.drafts();
    }
}

}  // namespace taloram
