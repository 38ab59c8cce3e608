#pragma once

#include <gtkmm/window.h>

#include <string>

namespace taloram {

// The page of the user's guide, which lies beside the programs or is a link to where it lies. Set when a program
// starts.
extern std::string g_guide;

// Opens the guide in a web browser; a box names it where it was not installed.
void open_guide(Gtk::Window& parent);

}  // namespace taloram
