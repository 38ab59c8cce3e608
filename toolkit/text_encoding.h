#pragma once

#include <glibmm/ustring.h>
#include <gtkmm/stockid.h>

#include <initializer_list>
#include <string>

#include "messages/message.h"

namespace taloram {

// The border between the locale's encoding, in which paths and comments are kept, and the toolkit's UTF-8. Neither way
// ever throws.

// A text for the toolkit; bytes that are not valid in the locale become U+FFFD. What was made from a name must not be
// turned back into a path when it holds one: keep the name.
[[nodiscard]] Glib::ustring to_toolkit(const std::string& text);

// A text from the toolkit; characters that the locale does not have become "?".
[[nodiscard]] std::string from_toolkit(const Glib::ustring& text);

// A text of the message catalogue for a widget.
[[nodiscard]] Glib::ustring message_text(e_message_local_t id);

// The same as a button's or label's text with a mnemonic: the first letter in `taken` order that is still free is
// underlined. `taken` collects the letters of one window.
[[nodiscard]] Glib::ustring mnemonic_text(e_message_local_t id, std::string& taken);

// The letters that the toolkit's own buttons take in its language, for `taken` to begin with.
[[nodiscard]] std::string stock_letters(std::initializer_list<Gtk::StockID> buttons);

}  // namespace taloram
