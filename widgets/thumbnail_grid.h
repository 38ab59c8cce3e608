#pragma once

#include <gtkmm/box.h>
#include <gtkmm/button.h>
#include <gtkmm/cssprovider.h>
#include <gtkmm/image.h>
#include <gtkmm/label.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/table.h>

#include <string>
#include <vector>

#include "widgets/scrolled_grid.h"

namespace taloram {

// The photographs of an album side by side, as many in a row as the window has room for, each with its thumbnail, name,
// first comment line and EXIF summary. Files are read for what is near the screen, when there is nothing else to do.
class thumbnail_grid_t : public Gtk::ScrolledWindow {
  public:
    thumbnail_grid_t();

    void set_photos(const std::string& album, const std::vector<std::string>& names);

    // Reads the files of a photograph again.
    void reload(size_t index);

    // Puts the keyboard's focus on a photograph and scrolls to it.
    void focus_photo(size_t index);

    // A photograph was clicked or Enter pressed on it; its index in the list.
    [[nodiscard]] sigc::signal<void, size_t>& signal_opened() { return opened_; }

  protected:
    void on_size_allocate(Gtk::Allocation& allocation) override;

  private:
    struct cell_t : scrolled_grid_t::cell_t {
        cell_t(thumbnail_grid_t& owner, size_t place);
        [[nodiscard]] std::vector<Gtk::Widget*> widgets() override { return {&button}; }
        void fill() override;

        thumbnail_grid_t& grid;
        size_t index;
        Gtk::Button button;
        Gtk::VBox box;
        Gtk::Image picture;
        Gtk::Label name_label;
        Gtk::Label comment_label;
        Gtk::Label summary_label;
    };

    [[nodiscard]] cell_t* find_cell(size_t index) const;
    bool press_key(const GdkEventKey& event, size_t index);

    std::string album_;
    std::vector<std::string> names_;
    size_t columns_ = 1;
    int cell_width_ = 1;  // pixels
    Glib::RefPtr<Gtk::CssProvider> style_;
    Gtk::Table table_;
    scrolled_grid_t cells_;
    sigc::signal<void, size_t> opened_;
};

// The comment of a photograph, empty without one, what can't be read and why in its place; and its EXIF summary as
// plain lines.
[[nodiscard]] Glib::ustring photo_comment(const std::string& album, const std::string& name);
[[nodiscard]] Glib::ustring photo_summary(const std::string& album, const std::string& name);

}  // namespace taloram
