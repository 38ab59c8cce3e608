#pragma once

#include <gtkmm/drawingarea.h>

namespace taloram {

// A picture as it is shown.
struct shown_picture_t {
    Cairo::RefPtr<Cairo::ImageSurface> pixels;  // the whole picture, at any scale; null while there are none
    double width = 0;                           // of the full size, in pixels, before the turn
    double height = 0;
    unsigned turns = 0;  // clockwise quarter turns of what is seen

    [[nodiscard]] double seen_width() const { return turns % 2 == 0 ? width : height; }
    [[nodiscard]] double seen_height() const { return turns % 2 == 0 ? height : width; }
};

// Shows one picture: fitted to the widget, zoomed (wheel) or moved (dragged). Which one, and at which scale it is
// decoded, is left to subclasses.
class picture_area_t : public Gtk::DrawingArea {
  public:
    picture_area_t();

    // About the middle of the widget.
    void zoom_in();
    void zoom_out();
    void fit();
    void one_to_one();

    // Moves the visible part by pixels of the widget.
    void pan(double right, double down);

    // Screen pixels a pixel of the full size; 0 while nothing is shown.
    [[nodiscard]] double zoom() const;
    [[nodiscard]] bool is_fitted() const { return zoom_ <= 0; }

    // After the user changed the zoom.
    [[nodiscard]] sigc::signal<void>& signal_zoomed() { return zoomed_; }

  protected:
    // The picture that keys and pointer act on; null when there is none.
    [[nodiscard]] virtual const shown_picture_t* shown() const = 0;

    void draw_background(const Cairo::RefPtr<Cairo::Context>& cr) const;
    void draw_picture(const Cairo::RefPtr<Cairo::Context>& cr, const shown_picture_t& picture);
    void draw_text(const Cairo::RefPtr<Cairo::Context>& cr, const Glib::ustring& text);

    // The zoom at which the whole picture is seen. Small ones are not blown up.
    [[nodiscard]] double fitting_zoom(const shown_picture_t& picture) const;

    bool on_scroll_event(GdkEventScroll* event) override;
    bool on_button_press_event(GdkEventButton* event) override;
    bool on_motion_notify_event(GdkEventMotion* event) override;

  private:
    struct point_t {
        double x = 0;
        double y = 0;
    };

    void zoom_to(double zoom, double x, double y);  // keeps what is at x, y of the widget there
    void keep_inside(const shown_picture_t& picture);
    [[nodiscard]] int device_width() const { return get_width() * get_scale_factor(); }
    [[nodiscard]] int device_height() const { return get_height() * get_scale_factor(); }

    double zoom_ = 0;  // 0: fitted
    point_t middle_;   // of the widget, in pixels of the full size as it is seen
    point_t drag_;     // the pointer's last place
    sigc::signal<void> zoomed_;
};

}  // namespace taloram
