#pragma once

#include <gdkmm/rectangle.h>
#include <gtkmm/label.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/textview.h>
#include <gtkmm/window.h>

namespace taloram {

constexpr int longest_list = 800;  // pixels; screens are often not much higher

// Makes a scroller ask for the size that its table was given, at most the screen's width and `max_height`, and never
// more than leaves the window's other widgets room on the screen.
void follow_table(Gtk::ScrolledWindow& scroller, Gtk::Window& window, const Gdk::Rectangle& table, int max_height);

constexpr int readable_characters = 20;  // what a long text is shown of at least

// The width of a text in widths of a Latin letter.
[[nodiscard]] int width_of(const Glib::ustring& text);

// A label that gives way to a narrow window: cut with an ellipsis, the whole text as its tooltip.
void set_short_text(Gtk::Label& label, const Glib::ustring& text, int widest_characters);

// Makes a text view one that is only read and looks like it: no frame, the window's own background, as high as its text
// up to `height` and away without one. To be put in the view's place.
[[nodiscard]] Gtk::ScrolledWindow& plain_text(Gtk::TextView& view, int height);

// Puts a text view into a frame with scroll bars of its own, so that a long text never makes the window grow.
[[nodiscard]] Gtk::Widget& framed_text(Gtk::TextView& view, int height);

}  // namespace taloram
