#pragma once

#include <gtkmm/image.h>
#include <gtkmm/spinbutton.h>
#include <gtkmm/togglebutton.h>

#include <optional>
#include <string>

#include "album/album_layout.h"
#include "libgr/image/image2d.h"
#include "widgets/scrolled_grid.h"

// What the album maker and the album editor share of their grids of photographs.
namespace taloram {

// What the user chose for a photograph, on the screen or far from it.
struct photo_choice_t {
    std::string name;  // of the file, as the directory has it
    int angle = 0;     // degrees clockwise, as the spinner says
    bool is_selected = false;

    // The angle as quarter turns; any other angle than 0, 90, 180 and 270 is reported and gives none.
    [[nodiscard]] std::optional<unsigned long> quarter_turns() const;

    // The name with the quarter turns, 0 where there are none.
    [[nodiscard]] files_t chosen() const;
};

// The widgets of one photograph that both grids have: its picture and the spinner that asks for a turn.
struct photo_cell_t : scrolled_grid_t::cell_t {
    libgr::image2d_t preview;  // as loaded, never turned
    Gtk::Image picture;
    Gtk::SpinButton rotation;  // degrees clockwise, 0 to 270 in steps of 90

    explicit photo_cell_t(const photo_choice_t& choice);

    // Shows a preview turned by `count` quarter turns. On a failure, which is reported, the picture stays.
    bool show_turned(const libgr::image2d_t& image, unsigned long count, const std::string& name);
};

// A toggle button that shows plainly, and not by colour alone, that what is on it is chosen: a frame and a check mark.
class choice_button_t : public Gtk::ToggleButton {
  protected:
    bool on_draw(const Cairo::RefPtr<Cairo::Context>& cr) override;
};

// Photographs in a row; a setting of 0 acts as 1.
[[nodiscard]] size_t photos_in_row();

}  // namespace taloram
