#pragma once

#include <gtkmm/image.h>
#include <gtkmm/spinbutton.h>
#include <gtkmm/table.h>

#include <optional>
#include <string>

#include "album/album_layout.h"
#include "libgr/image/image2d.h"

// The grid of photographs that the album maker and the album editor share: blocks of some table rows a photograph, the
// settings' number of photographs side by side.
namespace taloram {

// One photograph: its preview and the spinner that asks for a turn.
struct photo_cell_t {
    std::string name;          // of the file, as the directory has it
    libgr::image2d_t preview;  // as loaded, never turned
    Gtk::Image picture;
    Gtk::SpinButton rotation;  // degrees clockwise, 0 to 270 in steps of 90

    photo_cell_t();

    // Shows the preview turned by the spinner's angle. On a failure, which is reported, the picture stays.
    bool show_turned();

    // The spinner's angle as quarter turns; any other angle is reported and gives none.
    [[nodiscard]] std::optional<unsigned long> quarter_turns() const;

    // The name with the quarter turns, 0 where there are none.
    [[nodiscard]] files_t chosen() const;
};

// Photographs in a row; a setting of 0 acts as 1.
[[nodiscard]] size_t photos_in_row();

// Prepares an empty table for `count` photographs of `rows` table rows each.
void resize_grid(Gtk::Table& table, size_t count, guint rows);

// Puts a widget into table row `row` of the `rows` rows of photograph `index`.
void attach_to_grid(Gtk::Table& table, Gtk::Widget& widget, size_t index, guint row, guint rows);

}  // namespace taloram
