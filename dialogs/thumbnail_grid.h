#pragma once

#include <gtkmm/box.h>
#include <gtkmm/flowbox.h>
#include <gtkmm/image.h>
#include <gtkmm/label.h>
#include <gtkmm/scrolledwindow.h>

#include <memory>
#include <string>
#include <vector>

namespace taloram {

// The photographs of an album side by side, as many in a row as the window has room for, each with its thumbnail, name,
// first comment line and EXIF summary. Files are read when there is nothing else to do, so that it opens at once.
class thumbnail_grid_t : public Gtk::ScrolledWindow {
  public:
    thumbnail_grid_t();

    void set_photos(const std::string& album, const std::vector<std::string>& names);

    // Reads the files of a photograph again.
    void reload(size_t index);

    // Puts the keyboard's focus on a photograph.
    void focus_photo(size_t index);

    // A photograph was clicked or Enter pressed on it; its index in the list.
    [[nodiscard]] sigc::signal<void, size_t>& signal_opened() { return opened_; }

  private:
    struct cell_t {
        cell_t();

        std::string name;
        Gtk::FlowBoxChild child;
        Gtk::VBox box;
        Gtk::Image picture;
        Gtk::Label name_label;
        Gtk::Label comment_label;
        Gtk::Label summary_label;
    };

    [[nodiscard]] bool fill_some();
    void fill(cell_t& cell);

    std::string album_;
    Gtk::FlowBox flow_;
    std::vector<std::unique_ptr<cell_t>> cells_;
    size_t filled_ = 0;
    sigc::signal<void, size_t> opened_;
};

// The comment of a photograph, empty without one, and its EXIF summary as plain lines.
[[nodiscard]] Glib::ustring photo_comment(const std::string& album, const std::string& name);
[[nodiscard]] Glib::ustring photo_summary(const std::string& album, const std::string& name);

}  // namespace taloram
