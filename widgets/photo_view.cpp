#include "widgets/photo_view.h"

#include <atkmm/object.h>
#include <glibmm/main.h>

#include <algorithm>

#include "toolkit/text_encoding.h"
#include "toolkit/upright_pixels.h"

namespace taloram {

void photo_view_t::set_photos(const std::string& album, const std::vector<std::string>& names) {
    album_ = album;
    names_ = names;
    photos_.clear();
    go_to(0);
}

void photo_view_t::show_picture(size_t index) {
    if (names_.empty()) {
        return;
    }
    go_to(index);
    index = this->index();
    std::erase_if(photos_, [index](const auto& entry) { return entry.first + 1 < index || entry.first > index + 1; });
    fit();
    get_accessible()->set_name(to_toolkit(names_[index]));
    changed_.emit();
}

void photo_view_t::reload() {
    photos_.erase(index());
    fit();
}

const photo_view_t::photo_t* photo_view_t::current() const {
    const auto found = photos_.find(index());
    return found == photos_.end() || !found->second.picture.pixels ? nullptr : &found->second;
}

const shown_picture_t* photo_view_t::shown() const {
    const photo_t* const photo = current();
    return photo == nullptr ? nullptr : &photo->picture;
}

std::string photo_view_t::shown_file() const {
    const photo_t* const photo = current();
    return photo == nullptr ? "" : photo->sizes[photo->decoded].path;
}

Cairo::RefPtr<Cairo::ImageSurface> photo_view_t::shown_picture() const {
    const photo_t* const photo = current();
    return photo == nullptr ? Cairo::RefPtr<Cairo::ImageSurface>() : photo->picture.pixels;
}

void photo_view_t::photo_t::measure() {
    if (!sizes.empty()) {
        picture.width = static_cast<double>(sizes.back().width);
        picture.height = static_cast<double>(sizes.back().height);
    }
}

const photo_view_t::photo_t& photo_view_t::decode(size_t index) {
    const auto [entry, is_new] = photos_.try_emplace(index);
    photo_t& photo = entry->second;
    if (is_new) {
        photo.sizes = list_photo_sizes(album_, names_[index], longest_surface_side);
        if (!photo.sizes.empty()) {
            photo.measure();
            decode_size(photo, fitting_zoom(photo.picture));
        }
    }
    return photo;
}

void photo_view_t::decode_size(photo_t& photo, double zoom) {
    while (!photo.sizes.empty()) {
        const size_t wanted = wanted_size(photo.sizes, photo.picture.width * zoom);
        if (const auto picture = load_upright(photo.sizes[wanted])) {
            photo.picture.pixels = picture;
            photo.decoded = wanted;
            return;
        }
        // Another size of a photograph with one broken file is still worth seeing.
        const bool stands_before_shown = photo.picture.pixels && wanted < photo.decoded;
        photo.sizes.erase(photo.sizes.begin() + static_cast<std::ptrdiff_t>(wanted));
        photo.decoded -= stands_before_shown ? 1 : 0;
        photo.measure();
        if (photo.picture.pixels) {
            return;
        }
    }
}

// One step a call, so that keys and redraws come in between.
bool photo_view_t::work_ahead() {
    if (const photo_t* const photo = current();
        photo != nullptr && wanted_size(photo->sizes, photo->picture.width * zoom()) != photo->decoded) {
        decode_size(photos_[index()], zoom());
        queue_draw();
        return true;
    }
    for (const size_t neighbour : neighbours()) {
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

bool photo_view_t::on_draw(const Cairo::RefPtr<Cairo::Context>& cr) {
    draw_background(cr);
    if (names_.empty()) {
        return true;
    }
    // Only here the widget surely has its size; and of several key presses between two redraws one is decoded.
    const photo_t& photo = decode(index());
    if (photo.picture.pixels) {
        draw_picture(cr, photo.picture);
    } else {
        draw_text(cr, to_toolkit(names_[index()]) + "\n" + message_text(msg_photo_not_shown));
    }
    plan_work();
    return true;
}

}  // namespace taloram
