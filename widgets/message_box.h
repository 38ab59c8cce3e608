#pragma once

#include <gtkmm/window.h>

#include <string>
#include <vector>

#include "messages/message.h"

namespace taloram {

// Modal message boxes, run once. Errors and questions bear the title msg_message_box.
void show_error(Gtk::Window& parent, e_message_local_t text);
void show_error(Gtk::Window& parent, const Glib::ustring& text);

// A failure of the engine: the text, and below it at what file, where that is known, and the innermost reason.
void show_failure(Gtk::Window& parent, e_message_local_t text, const std::string& reason, const std::string& file = "");

// The same with another button beside OK; true when that was chosen.
[[nodiscard]] bool show_failure_or(Gtk::Window& parent, e_message_local_t text, const std::string& reason,
                                   const std::string& file, e_message_local_t other);

// A text and below it a list, which scrolls where it is long.
void show_list(Gtk::Window& parent, e_message_local_t text, const std::vector<std::string>& lines);

// The same as a question with Yes and No; true for Yes.
[[nodiscard]] bool ask_about_list(Gtk::Window& parent, e_message_local_t text, const std::vector<std::string>& lines);

// An error box with Yes and No; true for Yes.
[[nodiscard]] bool ask_yes_no(Gtk::Window& parent, e_message_local_t text);

enum class removal_t { none, for_good, to_trash };

// A warning titled with its own text, with OK (for good), Cancel and the trash; `detail` names what is meant.
[[nodiscard]] removal_t ask_to_remove(Gtk::Window& parent, e_message_local_t text, const Glib::ustring& detail);

}  // namespace taloram
