#pragma once

#include <glibmm/keyfile.h>
#include <gtkmm/togglebutton.h>
#include <gtkmm/window.h>

#include <string>

namespace taloram {

// What windows remember from one start to the next: choices of check buttons, sizes, zooms. They are kept apart from
// the settings, in a key file with a group for each window, and are worth no question and no box: what can't be read
// counts as never chosen, and what can't be written is forgotten with the process.
class window_preferences_t {
  public:
    // Reads the file; nothing is read or kept with "". One that is no key file is reported, and replaced by the next
    // choice.
    explicit window_preferences_t(std::string path);

    // The value kept for a window under a key, or `otherwise`; one of the wrong kind is reported.
    [[nodiscard]] bool flag(const char* window, const char* key, bool otherwise = false) const;
    [[nodiscard]] double number(const char* window, const char* key, double otherwise) const;

    // Writes the file when the value is new: whole, under its name at once, with what another program of ours has
    // written there meanwhile.
    void set_flag(const char* window, const char* key, bool value);
    void set_number(const char* window, const char* key, double value);

  private:
    template <typename T>
    [[nodiscard]] T value_of(const char* window, const char* key, T otherwise,
                             T (Glib::KeyFile::*get)(const Glib::ustring&, const Glib::ustring&) const) const;
    void store(const char* window, const char* key, const Glib::ustring& text);

    std::string path_;
    Glib::KeyFile values_;
};

// Those of this user, in taloram/window.conf below XDG_CONFIG_HOME or, where that names no absolute path, below
// ~/.config; read at the first call.
[[nodiscard]] window_preferences_t& window_preferences();

// Sets a check button as it was last time, and keeps every change.
void keep_choice(Gtk::ToggleButton& button, const char* window, const char* key);

// Gives a window that was not shown yet the size with which it was left last time, as far as the work area has room,
// and keeps the size with which it is closed. That of a maximized window is not kept.
void keep_size(Gtk::Window& window, const char* name);

}  // namespace taloram
