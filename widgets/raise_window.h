#pragma once

#include <gtkmm/window.h>

namespace taloram {

// The environment's OSTYPE as it was when the program started, null when unset.
extern const char* const ostype;

// Brings a window to the front after a child window closed: where OSTYPE is set and does not begin with "Win" it is
// iconified first, since the systems that set it raise only windows that were hidden.
void raise_window(Gtk::Window& window);

}  // namespace taloram
