#pragma once

#include <gtkmm/box.h>
#include <gtkmm/button.h>
#include <gtkmm/dialog.h>
#include <gtkmm/grid.h>
#include <gtkmm/label.h>
#include <gtkmm/scrolledwindow.h>

#include <memory>
#include <string>
#include <vector>

#include "album/book_entries.h"
#include "dialogs/viewer_parts.h"

namespace taloram {

// Shows a book: its texts and a row for each of its albums and books, which it opens in viewers of their own. Run once;
// it changes nothing.
class ViewBookDialog : public Gtk::Dialog {
  public:
    ViewBookDialog(Gtk::Window& parent, const std::string& book, const std::string& program_directory);

  private:
    struct row_t {
        Gtk::Label name;
        Gtk::Button open;
        Gtk::Label count;
        Gtk::Label title;
        Gtk::Label head;
    };

    void make_headings();
    void make_row(const book_entry_t& entry, int line);
    void make_buttons();
    void open_entry(const book_entry_t& entry);

    std::string book_;
    std::string program_directory_;
    viewer_texts_t texts_;
    Gtk::ScrolledWindow scroller_;
    Gtk::Grid table_;
    Gtk::Label empty_;
    std::vector<std::unique_ptr<row_t>> rows_;
    Gtk::Button page_button_;
    Gtk::Button close_button_;
};

}  // namespace taloram
