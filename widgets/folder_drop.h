#pragma once

#include <gtkmm/widget.h>

#include <functional>
#include <string>

namespace taloram {

// Lets the user drop a directory on a widget, from a file manager: `dropped` gets its path, of a file that of the
// directory it lies in. What has no path on this machine is not taken.
void accept_folder(Gtk::Widget& widget, const std::function<void(const std::string& path)>& dropped);

}  // namespace taloram
