#pragma once

#include <gtkmm/label.h>
#include <gtkmm/layout.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/table.h>

#include <functional>
#include <initializer_list>
#include <map>
#include <utility>
#include <vector>

#include "album/book_entries.h"
#include "messages/message.h"

namespace taloram {

// Shows a list of any length in a table that a scroller holds. Every row has its place in the table, but widgets only
// while it is on the screen or near it, or has the keyboard's focus; the first and the last row always have, so that
// the keyboard finds both ends. What a row shows and what was typed into it is the owner's, who makes its widgets again
// whenever the row comes back.
class row_table_t : public sigc::trackable {
  public:
    // Calls attach() for each widget of the row.
    using make_row_t = std::function<void(size_t row)>;

    // All rows are as high as the first that is made.
    row_table_t(Gtk::ScrolledWindow& scroller, Gtk::Table& table, make_row_t make_row);

    // Labels above columns, in the line that headings() gives; it is shown as long as there are rows.
    void add_headings(std::initializer_list<std::pair<guint, e_message_local_t>> headings);
    [[nodiscard]] Gtk::Widget& headings() { return headings_; }

    // Makes the list anew with `count` rows; it stays scrolled to where it is.
    void set_rows(size_t count);

    // Puts a managed widget into a row that is being made.
    void attach(Gtk::Widget& managed, guint column, size_t row);

    // Gives the keyboard's focus to a column of the first row; nothing without rows.
    void grab_focus(guint column);

  private:
    struct cell_t {
        Gtk::Widget* widget;
        guint column;
    };

    struct heading_t {
        guint column;
        Gtk::Label* label;
    };

    // The number of rows when the cell is in none.
    [[nodiscard]] size_t row_of(const Gtk::Widget* cell_widget) const;
    [[nodiscard]] std::vector<cell_t> first_row() const;
    [[nodiscard]] std::map<size_t, bool> wanted_rows() const;
    [[nodiscard]] int pitch() const;
    void schedule();
    void update();
    void measure();
    void fill_gaps();
    void fill_gap(size_t begin, size_t end);
    void place_headings();

    Gtk::ScrolledWindow& scroller_;
    Gtk::Table& table_;
    make_row_t make_row_;
    size_t count_ = 0;
    int row_height_ = 0;  // pixels, 0 as long as no row was made
    bool is_scheduled_ = false;
    std::map<size_t, std::vector<cell_t>> rows_;  // those that have widgets
    std::vector<Gtk::Widget*> gaps_;              // each as high as the rows without widgets that it stands for
    std::vector<heading_t> headed_;
    Gtk::Layout headings_;
};

// The width of each column of texts in a list, by its heading and its longest text, up to what a window has room for.
struct entry_widths_t {
    int name = 0;  // characters
    int count = 0;
    int title = 0;
    int head = 0;
};
// The first line of an entry's opening text, or that the entry's texts can't be read.
[[nodiscard]] Glib::ustring shown_head(const book_entry_t& entry);

[[nodiscard]] entry_widths_t widths_of(const std::vector<book_entry_t>& entries);

// A cell of text: as wide as its column's longest text of `characters` asks for, whatever it holds itself, so that
// columns stay while rows come and go; cut with an ellipsis, the whole text as its tooltip.
[[nodiscard]] Gtk::Label& text_cell(const Glib::ustring& text, int characters);

}  // namespace taloram
