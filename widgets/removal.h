#pragma once

#include <gtkmm/window.h>

#include <string>

namespace taloram {

// Asks whether a directory with all in it goes from the disk for good or to the desktop's trash, and does so. A disk
// without trash, or a directory that stays in parts, is told; after the former the question comes again. True when the
// directory may not be what it was.
[[nodiscard]] bool ask_and_remove(Gtk::Window& parent, const std::string& directory);

}  // namespace taloram
