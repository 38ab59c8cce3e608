#pragma once

#include <gtkmm/button.h>
#include <gtkmm/dialog.h>
#include <gtkmm/entry.h>
#include <gtkmm/label.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/table.h>

#include <memory>
#include <string>
#include <vector>

#include "album/book_entries.h"
#include "widgets/comment_fields.h"
#include "widgets/progress_window.h"
#include "widgets/row_table.h"

namespace taloram {

// Edits one book: its texts, and its entries, which are albums or further books. Run it through edit_book().
class EditBookDialog : public Gtk::Dialog {
  public:
    // The dialog's own responses.
    enum response_t { new_book = 0, new_album = 1, rebuild = 2 };

    EditBookDialog(Gtk::Window& parent, const std::string& bookdir);

    // True when the title entry is empty.
    [[nodiscard]] bool empty() const { return fields_.title.get_text().empty(); }

    // Lists the book anew; what the user typed and did not save stays. False when the book can't be listed.
    bool make_items();

    // Brings an album, or a book with all below it, up to date while the progress window shows how far it is. A failure
    // is told in a box.
    bool batchupdate(const std::string& path);

    // Typed texts that were not saved, to be taken over by the dialog that comes after this one.
    [[nodiscard]] comment_fields_t::drafts_t drafts() const { return fields_.drafts(); }
    void restore(const comment_fields_t::drafts_t& drafts) { fields_.restore(drafts); }

  protected:
    void on_response(int response) override;

  private:
    // What a row shows; its widgets come and go with the place that the list is scrolled to.
    struct item_t {
        book_entry_t entry;
        kept_text_t shown_name;
        Glib::ustring typed_name;

        [[nodiscard]] bool is_renamed() const { return !shown_name.is_left_alone(typed_name); }
    };

    void build();
    void table_size_allocate(Gdk::Rectangle& allocation);
    void make_row(size_t index);
    Gtk::Entry& name_entry(size_t index);
    void refresh();
    void save(bool rebuild_all);
    void save_texts();
    void rename_items();
    bool rewrite_page();
    void make_book();
    void make_album();
    void button_list(size_t index);
    void button_remove(size_t index);

    std::string book_directory_;
    comment_fields_t fields_;
    Gtk::ScrolledWindow scroller_;
    Gtk::Table table_;
    Gtk::Label hint_;  // stands where there are no entries
    std::vector<item_t> items_;
    entry_widths_t widths_;
    row_table_t rows_{scroller_, table_, [this](size_t index) { make_row(index); }};
    progress_window_t progress_;
};

// Lets the user edit a book until it is left with OK and a title, or with Cancel.
void edit_book(Gtk::Window& parent, const std::string& directory);

}  // namespace taloram
