#pragma once

#include <gtkmm/box.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/table.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

namespace taloram {

// A table of many photographs in a scroller, with widgets for those alone that are on the screen or less than a page
// from it: opening, closing and memory do not grow with the count. A photograph is a block of some table rows, one
// widget in each; all blocks are as high as the highest that was seen. What takes long, such as the pictures, is filled
// in while there is nothing else to do.
class scrolled_grid_t : public sigc::trackable {
  public:
    // What stands for one photograph while it is near the screen.
    struct cell_t {
        virtual ~cell_t() = default;

        // From top to bottom; null for a row that stays empty.
        [[nodiscard]] virtual std::vector<Gtk::Widget*> widgets() = 0;
        // Called once, with the widgets in the table.
        virtual void fill() = 0;

        bool is_filled = false;
    };
    using make_t = std::function<std::unique_ptr<cell_t>(size_t index)>;

    // Puts the table into the scroller. Both outlive the grid.
    scrolled_grid_t(Gtk::ScrolledWindow& scroller, Gtk::Table& table, guint rows, make_t make);

    // Puts `count` photographs into the table in place of all others, `columns` side by side, and scrolls to the first.
    // A short list is filled at once.
    void reset(size_t count, size_t columns);

    // The same photographs in another number of columns, scrolled to where they were.
    void set_columns(size_t columns);

    // Null for a photograph that is far from the screen.
    [[nodiscard]] cell_t* find(size_t index) const;

    // Scrolls until a photograph is seen whole, and puts the keyboard's focus on its widget `part`.
    void focus_on(size_t index, size_t part);

  private:
    // Rows of photographs.
    struct range_t {
        size_t first = 0;
        size_t last = 0;  // one past the last

        [[nodiscard]] bool contains(size_t row) const { return row >= first && row < last; }
        friend bool operator==(const range_t&, const range_t&) = default;
    };
    // A widget with the focus: its photograph and its row in the block.
    struct focus_t {
        size_t index = 0;
        size_t part = 0;
        bool is_set = false;
    };

    [[nodiscard]] size_t row_count() const { return (cells_.size() + columns_ - 1) / columns_; }
    [[nodiscard]] range_t cells_of(const range_t& rows) const;
    [[nodiscard]] guint table_row(size_t row) const { return static_cast<guint>((row - base_) * rows_); }
    [[nodiscard]] range_t wanted_rows() const;
    void resize_table();
    void plan_update();
    void update();
    void attach_row(size_t row);
    void detach_row(size_t row);
    void drop_cells();
    [[nodiscard]] focus_t find_focus() const;
    void move_focus(const focus_t& focus);
    void take_focus(Gtk::Widget& widget);
    [[nodiscard]] int height_of(size_t row) const;
    void measure();
    [[nodiscard]] cell_t* next_to_fill() const;
    static void fill(cell_t& cell);
    [[nodiscard]] bool fill_for(std::chrono::milliseconds time);

    Gtk::ScrolledWindow& scroller_;
    Gtk::Table& table_;
    Gtk::VBox box_;  // the table between what stands for the rows that are not in it
    Gtk::HBox above_;
    Gtk::HBox below_;
    guint rows_;  // of the table, in a block
    make_t make_;

    std::vector<std::unique_ptr<cell_t>> cells_;
    std::vector<std::unique_ptr<cell_t>> dropped_;  // one of them may be handling the event that dropped it
    size_t columns_ = 1;
    range_t attached_;
    size_t base_ = 0;     // the row of photographs that is the table's row 0
    int row_height_ = 0;  // pixels
    sigc::connection update_;
    sigc::connection filling_;
};

}  // namespace taloram
