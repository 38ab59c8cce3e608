#include "widgets/window_keys.h"

#include <gdk/gdkkeysyms.h>
#include <gtk/gtk.h>

#include "widgets/guide.h"

namespace taloram {

namespace {

void quit_from(GtkWindow* window);

void quit_opener(GtkWidget* /*closed*/, GtkWindow* opener) {
    quit_from(opener);
}

// Windows are modal: the one that another was opened from goes on, and can close, once that is gone.
void quit_from(GtkWindow* window) {
    if (GtkWindow* const opener = gtk_window_get_transient_for(window)) {
        g_signal_connect_object(window, "hide", G_CALLBACK(&quit_opener), opener, static_cast<GConnectFlags>(0));
    }
    gtk_window_close(window);
}

bool take_key(GdkEventKey* event, Gtk::Window& window, bool can_quit) {
    const guint held = event->state & gtk_accelerator_get_default_mod_mask();
    const guint key = gdk_keyval_to_lower(event->keyval);
    if (held == 0 && key == GDK_KEY_F1) {
        open_guide(window);
    } else if (held == GDK_CONTROL_MASK && key == GDK_KEY_w) {
        window.close();
    } else if (held == GDK_CONTROL_MASK && key == GDK_KEY_q && can_quit) {
        quit_from(window.gobj());
    } else {
        return false;
    }
    return true;
}

void add_keys(Gtk::Window& window, bool can_quit) {
    const auto take = [&window, can_quit](GdkEventKey* event) { return take_key(event, window, can_quit); };
    window.signal_key_press_event().connect(take, false);
}

}  // namespace

void add_window_keys(Gtk::Window& window) {
    add_keys(window, false);
}

void add_quit_keys(Gtk::Window& window) {
    add_keys(window, true);
}

}  // namespace taloram
