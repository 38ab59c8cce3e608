#pragma once

#include <gtkmm/window.h>

namespace taloram {

// Keys that mean the same in every window: Ctrl+W closes it, as the button in its frame does, and F1 opens the guide.
void add_window_keys(Gtk::Window& window);

// Those, and Ctrl+Q, which closes the window and then each from which it was opened: for windows in which nothing is
// typed that would be lost.
void add_quit_keys(Gtk::Window& window);

}  // namespace taloram
