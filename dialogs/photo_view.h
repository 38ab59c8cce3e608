#pragma once

#include <gtkmm/drawingarea.h>

#include <map>
#include <string>
#include <vector>

#include "dialogs/upright_photo.h"

namespace taloram {

// Shows one photograph of a list large: fitted to the widget, zoomed (wheel) or moved (dragged). It decodes the
// smallest size that fills what is seen; when nothing else is to do, also the next and the previous photograph, and
// holds no other. A photograph that can't be decoded is shown by its name; going on works.
class photo_view_t : public Gtk::DrawingArea {
  public:
    photo_view_t();

    void set_photos(const std::string& album, const std::vector<std::string>& names);

    // Shows a photograph of the list, fitted. An index behind the end shows the last.
    void show_photo(size_t index);
    void next();
    void previous();
    void first();
    void last();
    [[nodiscard]] size_t index() const { return index_; }

    // About the middle of the widget.
    void zoom_in();
    void zoom_out();
    void fit();
    void one_to_one();

    // Moves the visible part by pixels of the widget.
    void pan(double right, double down);

    // Decodes the photograph again, whose files have changed.
    void reload();

    // Screen pixels a pixel of the largest size; 0 while nothing is shown.
    [[nodiscard]] double zoom() const;
    // The decoded picture's file and surface; "" and null before the widget is drawn and for a broken photograph.
    [[nodiscard]] std::string shown_file() const;
    [[nodiscard]] Cairo::RefPtr<Cairo::ImageSurface> shown_picture() const;
    [[nodiscard]] size_t decoded_count() const { return photos_.size(); }

    // After another photograph came up.
    [[nodiscard]] sigc::signal<void>& signal_changed() { return changed_; }

  protected:
    bool on_draw(const Cairo::RefPtr<Cairo::Context>& cr) override;
    bool on_scroll_event(GdkEventScroll* event) override;
    bool on_button_press_event(GdkEventButton* event) override;
    bool on_motion_notify_event(GdkEventMotion* event) override;

  private:
    struct point_t {
        double x = 0;
        double y = 0;
    };
    // A photograph of the list with its one decoded size.
    struct photo_t {
        std::vector<photo_size_t> sizes;  // those that were not found broken, the smallest first
        size_t decoded = 0;               // index in `sizes`
        Cairo::RefPtr<Cairo::ImageSurface> picture;

        [[nodiscard]] const photo_size_t& full() const { return sizes.back(); }
    };

    [[nodiscard]] const photo_t* current() const;
    [[nodiscard]] double fitting_zoom(const photo_t& photo) const;
    [[nodiscard]] static size_t wanted_size(const photo_t& photo, double zoom);
    // Looks a photograph up, or finds its files and decodes it for the widget.
    const photo_t& decode(size_t index);
    static void decode_size(photo_t& photo, double zoom);
    [[nodiscard]] bool work_ahead();
    void plan_work();

    void zoom_to(double zoom, double x, double y);  // keeps what is at x, y of the widget there
    void keep_inside();
    void draw_picture(const Cairo::RefPtr<Cairo::Context>& cr, const photo_t& photo) const;
    void draw_failure(const Cairo::RefPtr<Cairo::Context>& cr);

    std::string album_;
    std::vector<std::string> names_;
    std::map<size_t, photo_t> photos_;  // the one shown and its neighbours
    size_t index_ = 0;
    bool forwards_ = true;  // the last move, and so probably the next
    double zoom_ = 0;       // 0: fitted
    point_t middle_;        // of the widget, in pixels of the largest size
    point_t drag_;          // the pointer's last place
    sigc::connection work_;
    sigc::signal<void> changed_;
};

}  // namespace taloram
