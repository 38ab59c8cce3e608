#pragma once

#include <gtkmm/menu.h>
#include <gtkmm/menubutton.h>
#include <gtkmm/menuitem.h>
#include <gtkmm/window.h>

namespace taloram {

// A button for what a program of the desktop tells about itself: its guide, its version and its licence.
class help_menu_t : public Gtk::MenuButton {
  public:
    explicit help_menu_t(Gtk::Window& window);

  private:
    void show_about();

    Gtk::Window& window_;
    Gtk::Menu menu_;
    Gtk::MenuItem guide_;
    Gtk::MenuItem about_;
};

}  // namespace taloram
