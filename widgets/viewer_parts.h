#pragma once

#include <gtkmm/dialog.h>
#include <gtkmm/label.h>
#include <gtkmm/scrolledwindow.h>

#include <string>

namespace taloram {

// What the two viewers have in common.

// The texts of an album or book above and below its contents. The labels live as long as the dialog that owns them.
struct viewer_texts_t {
    Gtk::Label title;
    Gtk::Label head;
    Gtk::Label last;

    // Loads the texts of `directory`; without a title its name stands for one. What is empty takes no room. A text that
    // can't be read is reported, and named in the place of the opening text.
    void load(const std::string& directory);
};

// A wrapped text that scrolls when it has more than a few lines.
[[nodiscard]] Gtk::Widget& scrolled_text(Gtk::Label& label);

// A window that the window manager lets the user resize, at first as large as the screen has room for, up to
// width x height pixels, later as it was left; `name` is that of its preferences.
void make_viewer_window(Gtk::Dialog& dialog, Gtk::Window& parent, const char* name, int width, int height);

}  // namespace taloram
