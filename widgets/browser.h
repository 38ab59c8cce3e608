#pragma once

#include <gtkmm/window.h>

#include <string>

namespace taloram {

// Opens a page, a path in the locale's encoding, in a web browser: with the system's command, else with the desktop's
// default browser, else a message box names the page.
void open_in_browser(Gtk::Window& parent, const std::string& page);

// Opens any file with the desktop's program for it, else a message box names the file.
void open_with_desktop(Gtk::Window& parent, const std::string& path);

}  // namespace taloram
