#include "toolkit/display.h"

#include <gdkmm/display.h>
#include <gdkmm/monitor.h>
#include <gtk/gtk.h>

#include <cstdlib>

namespace taloram {

bool open_display(int& argc, char**& argv) {
    if (std::getenv("GDK_BACKEND") == nullptr) {
        gdk_set_allowed_backends("quartz,win32,wayland,x11");
    }
    return gtk_init_check(&argc, &argv) != FALSE;
}

Gdk::Rectangle work_area(Gtk::Widget& widget) {
    Gdk::Rectangle area(0, 0, 1280, 800);
    const Glib::RefPtr<Gdk::Display> display = widget.get_display();
    Glib::RefPtr<Gdk::Monitor> monitor;
    if (const auto window = widget.get_window()) {
        monitor = display->get_monitor_at_window(window);
    } else {
        monitor = display->get_primary_monitor();
    }
    if (monitor) {
        monitor->get_workarea(area);
    }
    return area;
}

}  // namespace taloram
