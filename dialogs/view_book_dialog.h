#pragma once

#include <gtkmm/box.h>
#include <gtkmm/button.h>
#include <gtkmm/dialog.h>
#include <gtkmm/label.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/table.h>

#include <string>
#include <vector>

#include "album/book_entries.h"
#include "widgets/progress_window.h"
#include "widgets/row_table.h"
#include "widgets/viewer_parts.h"

namespace taloram {

// Shows a book: its texts and a row for each of its albums and books, which it opens in viewers of their own. Run once;
// it changes nothing.
class ViewBookDialog : public Gtk::Dialog {
  public:
    ViewBookDialog(Gtk::Window& parent, const std::string& book, const std::string& program_directory);

  private:
    void show_entries(Gtk::Box& content);
    void make_row(size_t index);
    void make_buttons();
    void open_entry(const book_entry_t& entry);

    std::string book_;
    std::string program_directory_;
    viewer_texts_t texts_;
    Gtk::ScrolledWindow scroller_;
    Gtk::Table table_;
    Gtk::Label empty_;
    std::vector<book_entry_t> entries_;
    entry_widths_t widths_;
    row_table_t rows_{scroller_, table_, [this](size_t index) { make_row(index); }};
    Gtk::Button check_button_;
    Gtk::Button page_button_;
    Gtk::Button close_button_;
    progress_window_t progress_{*this};
};

}  // namespace taloram
