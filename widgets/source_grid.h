#pragma once

#include <gtkmm/label.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/table.h>

#include <list>
#include <string>
#include <vector>

#include "widgets/held_search.h"
#include "widgets/photo_grid.h"

namespace taloram {

// The files of a directory to choose from: each with its thumbnail, its name and, for a photograph, a turn. Those that
// the albums of a book seem to have already are marked, as soon as they are found.
class source_grid_t {
  public:
    enum class search_t {
        none,  // there is nothing to look for
        going_on,
        done,
        failed,  // a part of the book can't be read: not all that it has is marked
    };

    // Both outlive the grid.
    source_grid_t(Gtk::ScrolledWindow& scroller, Gtk::Table& table);

    // Lists files of `directory`, none of them selected.
    void show_files(const std::string& directory, const std::list<std::string>& names, const std::string& book);

    [[nodiscard]] std::vector<files_t> selected() const;
    void invert();
    // Selects what is not marked, and nothing else.
    void select_new();

    // How far the marks are; the signal tells that it changed.
    [[nodiscard]] search_t search() const { return search_; }
    [[nodiscard]] const std::string& why_failed() const { return why_failed_; }
    [[nodiscard]] sigc::signal<void>& signal_searched() { return searched_; }

    // A file's button or spinner was used.
    void button_image(size_t index);
    void button_rotate(size_t index);

  private:
    struct item_t {
        photo_choice_t choice;
        std::string album;  // that seems to have the file; "" without one
    };

    // What is on the screen of a file.
    struct cell_t : photo_cell_t {
        cell_t(source_grid_t& owner, size_t place);
        [[nodiscard]] std::vector<Gtk::Widget*> widgets() override;
        void fill() override;
        void show_mark();

        source_grid_t& grid;
        size_t index;
        choice_button_t select;
        Gtk::Label label;
    };

    [[nodiscard]] cell_t* find_cell(size_t index) const;
    void set_selected(size_t index, bool is_selected);
    void set_search(search_t search, const std::string& reason = "");
    void mark(size_t index, const std::string& album);

    std::string directory_;
    std::string book_;
    std::vector<item_t> items_;
    scrolled_grid_t cells_;
    search_t search_ = search_t::none;
    std::string why_failed_;
    sigc::signal<void> searched_;
    held_search_t held_search_;
};

}  // namespace taloram
