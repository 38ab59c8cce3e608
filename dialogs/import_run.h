#pragma once

#include <gtkmm/window.h>

#include <optional>
#include <string>

#include "album/make_album.h"
#include "widgets/progress_window.h"

// What happens between the album maker and the album, with its boxes.
namespace taloram {

// Runs the album maker on a book until what was chosen can be made. Empty when the user gave up.
[[nodiscard]] std::optional<album_order_t> ask_for_album(Gtk::Window& parent, progress_window_t& progress,
                                                         const std::string& book);

// Makes the album behind the progress window. The user is asked about each file that fails, unless all such are to be
// left out: those are listed at the end. True when the album is made, or as far as
// it was made when the user stopped it; why it is not was told in a box then.
[[nodiscard]] bool run_import(Gtk::Window& parent, progress_window_t& progress, album_order_t order);

}  // namespace taloram
