#include "viewer/picture_view.h"

#include <atkmm/object.h>
#include <glibmm/main.h>

#include <algorithm>
#include <utility>

#include "toolkit/text_encoding.h"

namespace talovue {

namespace {

// Milliseconds for which the picture before stays when the next one is not ready.
constexpr unsigned longest_leave = 250;

}  // namespace

picture_view_t::picture_view_t() {
    loader_.signal_loaded().connect(sigc::mem_fun(*this, &picture_view_t::take_loaded));
    signal_zoomed().connect([this] {
        plan();
        changed_.emit();
    });
    property_scale_factor().signal_changed().connect(sigc::mem_fun(*this, &picture_view_t::plan));
}

void picture_view_t::set_pictures(std::vector<picture_t> pictures, size_t first) {
    pictures_ = std::move(pictures);
    entries_.clear();
    turns_.clear();
    go_to(0);
    show_picture(first);
}

void picture_view_t::show_picture(size_t index) {
    if (const taloram::shown_picture_t* const before = shown()) {
        leaving_ = *before;
    }
    go_to(index);
    for (auto& [place, entry] : entries_) {
        entry.detailed_for = 0;
        entry.detailed.pixels.clear();
    }
    std::erase_if(entries_, [this](const auto& entry) { return !is_near(entry.first); });
    is_late_ = false;
    late_.disconnect();
    if (find(this->index()) == nullptr) {
        late_ = Glib::signal_timeout().connect(sigc::mem_fun(*this, &picture_view_t::leave), longest_leave);
    }
    get_accessible()->set_name(pictures_.empty() ? "" : taloram::to_toolkit(name()));
    fit();
}

bool picture_view_t::leave() {
    is_late_ = true;
    leaving_ = {};
    queue_draw();
    return false;
}

void picture_view_t::turn_left() {
    turn(3);
}

void picture_view_t::turn_right() {
    turn(1);
}

void picture_view_t::turn(unsigned count) {
    turns_[index()] = (turns_of(index()) + count) % 4;
    if (const auto found = entries_.find(index()); found != entries_.end()) {
        found->second.fitted.turns = turns_of(index());
        found->second.detailed.turns = turns_of(index());
    }
    fit();
}

unsigned picture_view_t::turns_of(size_t index) const {
    const auto found = turns_.find(index);
    return found == turns_.end() ? 0 : found->second;
}

const picture_view_t::entry_t* picture_view_t::find(size_t index) const {
    const auto found = entries_.find(index);
    return found == entries_.end() ? nullptr : &found->second;
}

picture_view_t::facts_t picture_view_t::facts() const {
    const entry_t* const entry = find(index());
    if (entry == nullptr) {
        return {};
    }
    facts_t facts = entry->facts;
    if (turns_of(index()) % 2 != 0) {
        std::swap(facts.width, facts.height);
    }
    return facts;
}

size_t picture_view_t::ready_count() const {
    return static_cast<size_t>(std::count_if(entries_.begin(), entries_.end(),
                                             [](const auto& entry) { return bool{entry.second.fitted.pixels}; }));
}

int picture_view_t::shown_pixels_width() const {
    const taloram::shown_picture_t* const picture = shown();
    return picture == nullptr ? 0 : picture->pixels->get_width();
}

const taloram::shown_picture_t* picture_view_t::shown() const {
    const entry_t* const entry = find(index());
    if (entry == nullptr || !entry->fitted.pixels) {
        return nullptr;
    }
    return !is_fitted() && entry->detailed.pixels ? &entry->detailed : &entry->fitted;
}

picture_request_t picture_view_t::fitted_request(size_t index) const {
    picture_request_t request{pictures_[index], get_allocated_width() * get_scale_factor(),
                              get_allocated_height() * get_scale_factor()};
    if (turns_of(index) % 2 != 0) {
        std::swap(request.width, request.height);
    }
    return request;
}

bool picture_view_t::is_fitted_enough(size_t index) const {
    const entry_t* const entry = find(index);
    return entry != nullptr && (!entry->facts.failure.empty() || entry->fitted_for == fitted_request(index));
}

bool picture_view_t::is_detailed_enough() const {
    const entry_t* const entry = find(index());
    if (entry == nullptr || !entry->fitted.pixels) {
        return true;
    }
    const double wanted = std::min(zoom(), 1.0);
    // Far too much is drawn slowly.
    const bool fits = entry->detailed_for >= wanted && entry->detailed_for <= 2 * wanted;
    return fits || entry->fitted.pixels->get_width() >= entry->fitted.width * wanted;
}

void picture_view_t::plan() {
    // Before the widget has its size nothing can be fitted.
    if (pictures_.empty() || get_allocated_width() <= 1) {
        loader_.request({});
        return;
    }
    std::vector<picture_request_t> wanted;
    const auto add = [this, &wanted](size_t index) {
        if (!is_fitted_enough(index)) {
            wanted.push_back(fitted_request(index));
        }
    };
    add(index());
    if (!is_fitted() && !is_detailed_enough()) {
        picture_request_t request = fitted_request(index());
        request.zoom = std::min(zoom(), 1.0);
        wanted.push_back(request);
    }
    for (const size_t neighbour : neighbours()) {
        add(neighbour);
    }
    wanted.erase(std::unique(wanted.begin(), wanted.end()), wanted.end());
    loader_.request(std::move(wanted));
}

void picture_view_t::take_loaded() {
    picture_loader_t::result_t result;
    while (loader_.take(result)) {
        // The same file may stand in the list twice; the nearest place is as good as any.
        const auto [next, other] = neighbours();
        for (const size_t place : {index(), next, other}) {
            if (place < pictures_.size() && pictures_[place] == result.request.picture) {
                take(place, result);
                break;
            }
        }
    }
    plan();
    queue_draw();
    changed_.emit();
}

void picture_view_t::take(size_t index, picture_loader_t::result_t& result) {
    loaded_picture_t& picture = result.picture;
    const taloram::shown_picture_t shown{taloram::make_surface(std::move(picture.pixels)), picture.width,
                                         picture.height, turns_of(index)};
    if (result.request.zoom > 0) {
        // What was zoomed may have been left meanwhile.
        if (const auto found = entries_.find(index);
            found != entries_.end() && index == this->index() && !is_fitted()) {
            found->second.facts.damaged |= picture.damaged;
            found->second.detailed_for = result.request.zoom;
            found->second.detailed = shown;
        }
        return;
    }
    if (index == this->index()) {
        leaving_ = {};
        late_.disconnect();
    }
    entry_t& entry = entries_[index];
    const bool damaged = picture.damaged || entry.facts.damaged;
    entry.facts = {true,    picture.failure,           picture.width, picture.height, picture.file_bytes,
                   damaged, std::move(picture.summary)};
    entry.fitted_for = result.request;
    entry.fitted = shown;
}

bool picture_view_t::on_draw(const Cairo::RefPtr<Cairo::Context>& cr) {
    draw_background(cr);
    if (pictures_.empty()) {
        draw_text(cr, taloram::message_text(taloram::msg_no_pictures));
        return true;
    }
    const Glib::ustring shown_name = taloram::to_toolkit(name());
    const entry_t* const entry = find(index());
    if (const taloram::shown_picture_t* const picture = shown()) {
        draw_picture(cr, *picture);
    } else if (entry != nullptr) {
        draw_text(cr, shown_name + "\n\n" + taloram::to_toolkit(entry->facts.failure));
    } else if (is_late_) {
        draw_text(cr, shown_name + "\n\n" + taloram::message_text(taloram::msg_reading_photo));
    } else if (leaving_.pixels) {
        draw_picture(cr, leaving_);
    }
    return true;
}

void picture_view_t::on_size_allocate(Gtk::Allocation& allocation) {
    picture_area_t::on_size_allocate(allocation);
    plan();
    changed_.emit();
}

}  // namespace talovue
