#include "toolkit/picture_area.h"

#include <algorithm>
#include <cmath>

namespace taloram {

namespace {

constexpr double zoom_step = 1.25;
constexpr double smallest_zoom = 1.0 / 64;
constexpr double largest_zoom = 16;

// Places of a picture of the full size, before its turn, as places of what is seen.
Cairo::Matrix turn_matrix(const shown_picture_t& picture) {
    switch (picture.turns % 4) {
        case 1:
            return {0, 1, -1, 0, picture.height, 0};
        case 2:
            return {-1, 0, 0, -1, picture.width, picture.height};
        case 3:
            return {0, -1, 1, 0, 0, picture.width};
        default:
            return {1, 0, 0, 1, 0, 0};
    }
}

}  // namespace

picture_area_t::picture_area_t() {
    set_can_focus();
    add_events(Gdk::SCROLL_MASK | Gdk::BUTTON_PRESS_MASK | Gdk::BUTTON1_MOTION_MASK);
}

void picture_area_t::zoom_in() {
    zoom_to(zoom() * zoom_step, get_width() / 2.0, get_height() / 2.0);
}

void picture_area_t::zoom_out() {
    zoom_to(zoom() / zoom_step, get_width() / 2.0, get_height() / 2.0);
}

void picture_area_t::fit() {
    zoom_ = 0;
    queue_draw();
    zoomed_.emit();
}

void picture_area_t::one_to_one() {
    zoom_to(1, get_width() / 2.0, get_height() / 2.0);
}

void picture_area_t::pan(double right, double down) {
    const shown_picture_t* const picture = shown();
    if (picture != nullptr && zoom_ > 0) {
        middle_.x += right * get_scale_factor() / zoom_;
        middle_.y += down * get_scale_factor() / zoom_;
        keep_inside(*picture);
        queue_draw();
    }
}

double picture_area_t::zoom() const {
    const shown_picture_t* const picture = shown();
    return picture == nullptr ? 0 : zoom_ > 0 ? zoom_ : fitting_zoom(*picture);
}

double picture_area_t::fitting_zoom(const shown_picture_t& picture) const {
    return std::clamp(std::min(device_width() / picture.seen_width(), device_height() / picture.seen_height()),
                      smallest_zoom / 1024, 1.0);
}

void picture_area_t::zoom_to(double zoom, double x, double y) {
    const shown_picture_t* const picture = shown();
    if (picture == nullptr) {
        return;
    }
    if (zoom_ <= 0) {
        middle_ = {picture->seen_width() / 2, picture->seen_height() / 2};
        zoom_ = fitting_zoom(*picture);
    }
    const double from_middle_x = (x - get_width() / 2.0) * get_scale_factor();
    const double from_middle_y = (y - get_height() / 2.0) * get_scale_factor();
    const double before = zoom_;
    zoom_ = std::clamp(zoom, std::min(smallest_zoom, before), largest_zoom);
    middle_.x += from_middle_x / before - from_middle_x / zoom_;
    middle_.y += from_middle_y / before - from_middle_y / zoom_;
    keep_inside(*picture);
    queue_draw();
    zoomed_.emit();
}

// No edge of the picture comes further in than the widget's, and what fits stays in the middle.
void picture_area_t::keep_inside(const shown_picture_t& picture) {
    if (zoom_ <= 0) {
        return;
    }
    const auto keep = [this](double& middle, double whole, int visible) {
        const double half = visible / zoom_ / 2;
        middle = whole <= 2 * half ? whole / 2 : std::clamp(middle, half, whole - half);
    };
    keep(middle_.x, picture.seen_width(), device_width());
    keep(middle_.y, picture.seen_height(), device_height());
}

void picture_area_t::draw_background(const Cairo::RefPtr<Cairo::Context>& cr) const {
    cr->set_source_rgb(0.12, 0.12, 0.12);
    cr->paint();
}

void picture_area_t::draw_picture(const Cairo::RefPtr<Cairo::Context>& cr, const shown_picture_t& picture) {
    keep_inside(picture);  // the widget may have another size than when the zoom was set
    const double device = get_scale_factor();
    const double shown_zoom = zoom_ > 0 ? zoom_ : fitting_zoom(picture);
    const double middle_x = zoom_ > 0 ? middle_.x : picture.seen_width() / 2;
    const double middle_y = zoom_ > 0 ? middle_.y : picture.seen_height() / 2;
    const int width = picture.pixels->get_width();
    const int height = picture.pixels->get_height();
    // What was decoded for this very zoom lost less than a pixel to rounding; stretched by that it would be blurred.
    const bool exact =
        std::abs(picture.width * shown_zoom - width) < 1 && std::abs(picture.height * shown_zoom - height) < 1;
    const auto pattern = Cairo::SurfacePattern::create(picture.pixels);
    pattern->set_filter(exact                                ? Cairo::FILTER_NEAREST
                        : picture.width * shown_zoom > width ? Cairo::FILTER_BILINEAR
                                                             : Cairo::FILTER_GOOD);
    pattern->set_extend(Cairo::EXTEND_PAD);
    cr->save();
    cr->scale(1 / device, 1 / device);
    // On a whole pixel of the screen, for the same reason.
    cr->translate(std::round(device_width() / 2.0 - middle_x * shown_zoom),
                  std::round(device_height() / 2.0 - middle_y * shown_zoom));
    if (exact) {
        cr->transform(turn_matrix({{}, double(width), double(height), picture.turns}));
    } else {
        cr->scale(shown_zoom, shown_zoom);
        cr->transform(turn_matrix(picture));
        cr->scale(picture.width / width, picture.height / height);
    }
    cr->set_source(pattern);
    cr->rectangle(0, 0, width, height);
    cr->fill();
    cr->restore();
}

void picture_area_t::draw_text(const Cairo::RefPtr<Cairo::Context>& cr, const Glib::ustring& text) {
    const auto layout = create_pango_layout(text);
    layout->set_alignment(Pango::ALIGN_CENTER);
    layout->set_width(get_width() * PANGO_SCALE);
    layout->set_wrap(Pango::WRAP_WORD_CHAR);
    int width = 0;
    int height = 0;
    layout->get_pixel_size(width, height);
    cr->set_source_rgb(0.9, 0.9, 0.9);
    cr->move_to(0, (get_height() - height) / 2.0);
    layout->show_in_cairo_context(cr);
}

bool picture_area_t::on_scroll_event(GdkEventScroll* event) {
    if (event->direction == GDK_SCROLL_UP) {
        zoom_to(zoom() * zoom_step, event->x, event->y);
    } else if (event->direction == GDK_SCROLL_DOWN) {
        zoom_to(zoom() / zoom_step, event->x, event->y);
    }
    return true;
}

bool picture_area_t::on_button_press_event(GdkEventButton* event) {
    grab_focus();
    drag_ = {event->x, event->y};
    return true;
}

bool picture_area_t::on_motion_notify_event(GdkEventMotion* event) {
    pan(drag_.x - event->x, drag_.y - event->y);
    drag_ = {event->x, event->y};
    return true;
}

}  // namespace taloram
