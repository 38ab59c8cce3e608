#pragma once

#include <glibmm/ustring.h>
#include <gtkmm/entry.h>

namespace taloram {

// The text with a blank in place of each line end (LF, CR, CR LF).
[[nodiscard]] Glib::ustring on_one_line(const Glib::ustring& text);

// From now on whatever is pasted, dropped, typed or set into the entry has blanks for its line ends: titles, names and
// settings are one line of a file each.
void keep_on_one_line(Gtk::Entry& entry);

}  // namespace taloram
