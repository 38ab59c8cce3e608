#include "toolkit/window_preferences.h"

#include <glib.h>
#include <gtk/gtk.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "libutils/diagnostics.h"
#include "libutils/files/new_file.h"
#include "libutils/files/read_file.h"
#include "libutils/files/system_path.h"
#include "toolkit/display.h"

namespace taloram {

namespace {

constexpr const char* width_key = "width";    // pixels
constexpr const char* height_key = "height";  // pixels

std::string preferences_path() {
    // Not the toolkit's own answer, which is that of the process's start.
    const char* const config = std::getenv("XDG_CONFIG_HOME");
    const char* const home = std::getenv("HOME");
    std::string directory;
    if (config != nullptr && config[0] == '/') {
        directory = config;
    } else if (home != nullptr && home[0] != '\0') {
        directory = std::string(home) + "/.config";
    }
    return directory.empty() ? "" : directory + "/taloram/window.conf";
}

// No values where there is no file.
std::error_code load(Glib::KeyFile& values, const std::string& path) {
    constexpr uint64_t longest = uint64_t{1} << 20;  // bytes
    std::string text;
    const std::error_code failure = libutils::read_file(text, path, longest);
    if (failure || text.empty()) {
        return libutils::is_absent(failure) ? std::error_code() : failure;
    }
    if (g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) == FALSE) {
        return make_error_code(std::errc::illegal_byte_sequence);
    }
    try {
        values.load_from_data(text, Glib::KEY_FILE_KEEP_COMMENTS | Glib::KEY_FILE_KEEP_TRANSLATIONS);
    } catch (const Glib::Error&) {
        return make_error_code(std::errc::illegal_byte_sequence);
    }
    return {};
}

void store_size(GtkWidget* widget, gpointer name) {
    auto* const window = GTK_WINDOW(widget);
    GdkWindow* const surface = gtk_widget_get_window(widget);
    const bool fills_screen = surface != nullptr && (gdk_window_get_state(surface) &
                                                     (GDK_WINDOW_STATE_FULLSCREEN | GDK_WINDOW_STATE_MAXIMIZED)) != 0;
    if (!fills_screen) {
        int width = 0;
        int height = 0;
        gtk_window_get_size(window, &width, &height);
        const auto* const group = static_cast<const char*>(name);
        window_preferences().set_number(group, width_key, width);
        window_preferences().set_number(group, height_key, height);
    }
}

}  // namespace

window_preferences_t::window_preferences_t(std::string path) : path_(std::move(path)) {
    if (const std::error_code failure = path_.empty() ? std::error_code() : load(values_, path_)) {
        libutils::report(path_, ": can't be used, ", failure.message());
    }
}

template <typename T>
T window_preferences_t::value_of(const char* window, const char* key, T otherwise,
                                 T (Glib::KeyFile::*get)(const Glib::ustring&, const Glib::ustring&) const) const {
    try {
        return values_.has_group(window) && values_.has_key(window, key) ? (values_.*get)(window, key) : otherwise;
    } catch (const Glib::Error&) {
        libutils::report(path_, ": can't be used: ", window, " ", key);
        return otherwise;
    }
}

bool window_preferences_t::flag(const char* window, const char* key, bool otherwise) const {
    return value_of(window, key, otherwise, &Glib::KeyFile::get_boolean);
}

double window_preferences_t::number(const char* window, const char* key, double otherwise) const {
    const double value = value_of(window, key, otherwise, &Glib::KeyFile::get_double);
    return std::isfinite(value) ? value : otherwise;
}

void window_preferences_t::set_flag(const char* window, const char* key, bool value) {
    store(window, key, value ? "true" : "false");
}

void window_preferences_t::set_number(const char* window, const char* key, double value) {
    char text[G_ASCII_DTOSTR_BUF_SIZE];
    store(window, key, g_ascii_dtostr(text, sizeof text, value));
}

void window_preferences_t::store(const char* window, const char* key, const Glib::ustring& text) {
    try {
        if (values_.has_group(window) && values_.has_key(window, key) && values_.get_value(window, key) == text) {
            return;
        }
        values_.set_value(window, key, text);
        Glib::KeyFile together;
        if (path_.empty()) {
            return;
        }
        static_cast<void>(load(together, path_));
        together.set_value(window, key, text);
        constexpr int owner_only = 0700;  // as for every directory of this kind
        g_mkdir_with_parents(libutils::directory_of_file(path_).c_str(), owner_only);
        static_cast<void>(libutils::replace_file(path_, libutils::staging_t::beside, together.to_data().raw()));
    } catch (const Glib::Error& failure) {
        libutils::report(path_, ": ", failure.what().raw());
    }
}

window_preferences_t& window_preferences() {
    static window_preferences_t preferences(preferences_path());
    return preferences;
}

void keep_choice(Gtk::ToggleButton& button, const char* window, const char* key) {
    button.set_active(window_preferences().flag(window, key));
    button.signal_toggled().connect(
        [&button, window, key] { window_preferences().set_flag(window, key, button.get_active()); });
}

void keep_size(Gtk::Window& window, const char* name) {
    constexpr double unknown = -1;
    const Gdk::Rectangle area = work_area(window);
    const double width = window_preferences().number(name, width_key, unknown);
    const double height = window_preferences().number(name, height_key, unknown);
    if (width >= 1 && height >= 1) {
        window.set_default_size(static_cast<int>(std::min<double>(width, area.get_width())),
                                static_cast<int>(std::min<double>(height, area.get_height())));
    }
    // Not a signal of the toolkit's C++ side, which is half gone when a window on the stack is left.
    g_signal_connect(window.gobj(), "unmap", G_CALLBACK(&store_size), const_cast<char*>(name));
}

}  // namespace taloram
