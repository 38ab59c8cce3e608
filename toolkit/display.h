#pragma once

#include <gdkmm/rectangle.h>
#include <gtkmm/widget.h>

namespace taloram {

// Starts the toolkit; true when a display can be opened. Only the backends that show windows by themselves are asked:
// the others complain in lines of their own. Takes the toolkit's options out of the arguments.
[[nodiscard]] bool open_display(int& argc, char**& argv);

// What windows may cover of the monitor that `widget` is on; the primary monitor's before it is shown.
[[nodiscard]] Gdk::Rectangle work_area(Gtk::Widget& widget);

}  // namespace taloram
