#pragma once

#include <gtkmm/label.h>
#include <gtkmm/overlay.h>
#include <gtkmm/window.h>

#include <string>
#include <vector>

#include "viewer/picture_list.h"
#include "viewer/picture_view.h"

namespace talovue {

// The viewer: a picture that covers the window, a panel with its shooting data on demand, keys for all else. What is
// dropped onto it is opened. No file is ever changed.
class viewer_window_t : public Gtk::Window {
  public:
    explicit viewer_window_t(picture_list_t list);

    void start_slide_show(double seconds);

    // Shows what was dropped onto the window, unless one of it does not exist, which is reported.
    void open_dropped(const std::vector<Glib::ustring>& uris);

  protected:
    bool on_key_press_event(GdkEventKey* event) override;
    bool on_window_state_event(GdkEventWindowState* event) override;
    void on_drag_data_received(const Glib::RefPtr<Gdk::DragContext>& context, int x, int y,
                               const Gtk::SelectionData& data, guint info, guint time) override;

  private:
    void toggle_full_screen();
    void toggle_slide_show();
    void toggle_info();
    void back();
    [[nodiscard]] bool slide();
    void refresh();
    void refresh_info();
    [[nodiscard]] Glib::ustring title() const;

    picture_view_t view_;
    Gtk::Label info_;
    Gtk::Overlay overlay_;
    bool full_screen_ = false;
    double slide_seconds_;
    sigc::connection slide_show_;
};

}  // namespace talovue
