#include "dialogs/photo_view.h"

#include <atkmm/object.h>
#include <glibmm/main.h>

#include <algorithm>
#include <cmath>

#include "toolkit/text_encoding.h"

namespace taloram {

namespace {

constexpr double zoom_step = 1.25;
constexpr double smallest_zoom = 1.0 / 64;
constexpr double largest_zoom = 16;

}  // namespace

photo_view_t::photo_view_t() {
    set_can_focus();
    add_events(Gdk::SCROLL_MASK | Gdk::BUTTON_PRESS_MASK | Gdk::BUTTON1_MOTION_MASK);
}

void photo_view_t::set_photos(const std::string& album, const std::vector<std::string>& names) {
    album_ = album;
    names_ = names;
    photos_.clear();
    index_ = 0;
}

void photo_view_t::show_photo(size_t index) {
    if (names_.empty()) {
        return;
    }
    index = std::min(index, names_.size() - 1);
    forwards_ = index >= index_;
    index_ = index;
    std::erase_if(photos_, [this](const auto& entry) { return entry.first + 1 < index_ || entry.first > index_ + 1; });
    fit();
    get_accessible()->set_name(to_toolkit(names_[index_]));
    changed_.emit();
}

void photo_view_t::next() {
    show_photo(index_ + 1);
}

void photo_view_t::previous() {
    show_photo(index_ == 0 ? 0 : index_ - 1);
}

void photo_view_t::first() {
    show_photo(0);
}

void photo_view_t::last() {
    show_photo(names_.size());
}

void photo_view_t::zoom_in() {
    zoom_to(zoom() * zoom_step, get_width() / 2.0, get_height() / 2.0);
}

void photo_view_t::zoom_out() {
    zoom_to(zoom() / zoom_step, get_width() / 2.0, get_height() / 2.0);
}

void photo_view_t::fit() {
    zoom_ = 0;
    queue_draw();
}

void photo_view_t::one_to_one() {
    zoom_to(1, get_width() / 2.0, get_height() / 2.0);
}

void photo_view_t::pan(double right, double down) {
    if (zoom_ > 0) {
        middle_.x += right * get_scale_factor() / zoom_;
        middle_.y += down * get_scale_factor() / zoom_;
        keep_inside();
        queue_draw();
    }
}

void photo_view_t::reload() {
    photos_.erase(index_);
    fit();
}

const photo_view_t::photo_t* photo_view_t::current() const {
    const auto found = photos_.find(index_);
    return found == photos_.end() || !found->second.picture ? nullptr : &found->second;
}

double photo_view_t::zoom() const {
    const photo_t* const photo = current();
    return photo == nullptr ? 0 : zoom_ > 0 ? zoom_ : fitting_zoom(*photo);
}

std::string photo_view_t::shown_file() const {
    const photo_t* const photo = current();
    return photo == nullptr ? "" : photo->sizes[photo->decoded].path;
}

Cairo::RefPtr<Cairo::ImageSurface> photo_view_t::shown_picture() const {
    const photo_t* const photo = current();
    return photo == nullptr ? Cairo::RefPtr<Cairo::ImageSurface>() : photo->picture;
}

// Small photographs are not blown up.
double photo_view_t::fitting_zoom(const photo_t& photo) const {
    const double width = get_width() * get_scale_factor() / static_cast<double>(photo.full().width);
    const double height = get_height() * get_scale_factor() / static_cast<double>(photo.full().height);
    return std::clamp(std::min(width, height), smallest_zoom / 1024, 1.0);
}

size_t photo_view_t::wanted_size(const photo_t& photo, double zoom) {
    const double width = static_cast<double>(photo.full().width) * zoom;
    // Halving drops an odd column, at most one pixel of the result.
    const auto found = std::find_if(photo.sizes.begin(), photo.sizes.end(), [width](const photo_size_t& size) {
        return static_cast<double>(size.width) + 1 >= width;
    });
    return std::min(static_cast<size_t>(found - photo.sizes.begin()), photo.sizes.size() - 1);
}

const photo_view_t::photo_t& photo_view_t::decode(size_t index) {
    const auto [entry, is_new] = photos_.try_emplace(index);
    photo_t& photo = entry->second;
    if (is_new) {
        photo.sizes = list_photo_sizes(album_, names_[index]);
        if (!photo.sizes.empty()) {
            decode_size(photo, fitting_zoom(photo));
        }
    }
    return photo;
}

void photo_view_t::decode_size(photo_t& photo, double zoom) {
    while (!photo.sizes.empty()) {
        const size_t wanted = wanted_size(photo, zoom);
        if (const auto picture = load_upright(photo.sizes[wanted])) {
            photo.picture = picture;
            photo.decoded = wanted;
            return;
        }
        // Another size of a photograph with one broken file is still worth seeing.
        const bool stands_before_shown = photo.picture && wanted < photo.decoded;
        photo.sizes.erase(photo.sizes.begin() + static_cast<std::ptrdiff_t>(wanted));
        photo.decoded -= stands_before_shown ? 1 : 0;
        if (photo.picture) {
            return;
        }
    }
}

// One step a call, so that keys and redraws come in between.
bool photo_view_t::work_ahead() {
    if (const photo_t* const photo = current(); photo != nullptr && wanted_size(*photo, zoom()) != photo->decoded) {
        decode_size(photos_[index_], zoom());
        queue_draw();
        return true;
    }
    const size_t before = index_ == 0 ? index_ : index_ - 1;
    const size_t behind = std::min(index_ + 1, names_.size() - 1);
    for (const size_t neighbour : {forwards_ ? behind : before, forwards_ ? before : behind}) {
        if (!photos_.contains(neighbour)) {
            decode(neighbour);
            return true;
        }
    }
    return false;
}

void photo_view_t::plan_work() {
    if (!work_.connected()) {
        work_ = Glib::signal_idle().connect(sigc::mem_fun(*this, &photo_view_t::work_ahead));
    }
}

void photo_view_t::zoom_to(double zoom, double x, double y) {
    const photo_t* const photo = current();
    if (photo == nullptr) {
        return;
    }
    if (zoom_ <= 0) {
        middle_ = {static_cast<double>(photo->full().width) / 2, static_cast<double>(photo->full().height) / 2};
        zoom_ = fitting_zoom(*photo);
    }
    const double from_middle_x = (x - get_width() / 2.0) * get_scale_factor();
    const double from_middle_y = (y - get_height() / 2.0) * get_scale_factor();
    const double before = zoom_;
    zoom_ = std::clamp(zoom, std::min(smallest_zoom, before), largest_zoom);
    middle_.x += from_middle_x / before - from_middle_x / zoom_;
    middle_.y += from_middle_y / before - from_middle_y / zoom_;
    keep_inside();
    queue_draw();
}

// No edge of the photograph comes further in than the widget's, and what fits stays in the middle.
void photo_view_t::keep_inside() {
    const photo_t* const photo = current();
    if (photo == nullptr || zoom_ <= 0) {
        return;
    }
    const auto keep = [this](double& middle, uint64_t length, int visible) {
        const double whole = static_cast<double>(length);
        const double half = visible * get_scale_factor() / zoom_ / 2;
        middle = whole <= 2 * half ? whole / 2 : std::clamp(middle, half, whole - half);
    };
    keep(middle_.x, photo->full().width, get_width());
    keep(middle_.y, photo->full().height, get_height());
}

bool photo_view_t::on_draw(const Cairo::RefPtr<Cairo::Context>& cr) {
    cr->set_source_rgb(0.12, 0.12, 0.12);
    cr->paint();
    if (names_.empty()) {
        return true;
    }
    // Only here the widget surely has its size; and of several key presses between two redraws one is decoded.
    const photo_t& photo = decode(index_);
    if (photo.picture) {
        keep_inside();
        draw_picture(cr, photo);
    } else {
        draw_failure(cr);
    }
    plan_work();
    return true;
}

void photo_view_t::draw_picture(const Cairo::RefPtr<Cairo::Context>& cr, const photo_t& photo) const {
    const double device = get_scale_factor();
    const double full_width = static_cast<double>(photo.full().width);
    const double full_height = static_cast<double>(photo.full().height);
    const double shown = zoom();
    const double middle_x = zoom_ > 0 ? middle_.x : full_width / 2;
    const double middle_y = zoom_ > 0 ? middle_.y : full_height / 2;
    // On a whole pixel of the screen, or one-to-one would be blurred.
    cr->scale(1 / device, 1 / device);
    cr->translate(std::round(get_width() * device / 2 - middle_x * shown),
                  std::round(get_height() * device / 2 - middle_y * shown));
    const int width = photo.picture->get_width();
    const int height = photo.picture->get_height();
    cr->scale(full_width * shown / width, full_height * shown / height);
    const auto pattern = Cairo::SurfacePattern::create(photo.picture);
    pattern->set_filter(full_width * shown > width ? Cairo::FILTER_BILINEAR : Cairo::FILTER_GOOD);
    pattern->set_extend(Cairo::EXTEND_PAD);
    cr->set_source(pattern);
    cr->rectangle(0, 0, width, height);
    cr->fill();
}

void photo_view_t::draw_failure(const Cairo::RefPtr<Cairo::Context>& cr) {
    const auto text = create_pango_layout(to_toolkit(names_[index_]) + "\n" + message_text(msg_photo_not_shown));
    text->set_alignment(Pango::ALIGN_CENTER);
    text->set_width(get_width() * PANGO_SCALE);
    text->set_wrap(Pango::WRAP_WORD_CHAR);
    int width = 0;
    int height = 0;
    text->get_pixel_size(width, height);
    cr->set_source_rgb(0.9, 0.9, 0.9);
    cr->move_to(0, (get_height() - height) / 2.0);
    text->show_in_cairo_context(cr);
}

bool photo_view_t::on_scroll_event(GdkEventScroll* event) {
    if (event->direction == GDK_SCROLL_UP) {
        zoom_to(zoom() * zoom_step, event->x, event->y);
    } else if (event->direction == GDK_SCROLL_DOWN) {
        zoom_to(zoom() / zoom_step, event->x, event->y);
    }
    return true;
}

bool photo_view_t::on_button_press_event(GdkEventButton* event) {
    grab_focus();
    drag_ = {event->x, event->y};
    return true;
}

bool photo_view_t::on_motion_notify_event(GdkEventMotion* event) {
    pan(drag_.x - event->x, drag_.y - event->y);
    drag_ = {event->x, event->y};
    return true;
}

}  // namespace taloram
