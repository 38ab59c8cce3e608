#include "toolkit/picture_series.h"

#include <gdk/gdkkeysyms.h>

#include <algorithm>
#include <iterator>

namespace taloram {

namespace {

constexpr double pan_step = 80;  // pixels

struct key_t {
    guint key;
    guint keypad;  // the same on the keypad
    void (picture_series_t::*action)();
};

constexpr key_t keys[] = {
    {GDK_KEY_Left, GDK_KEY_KP_Left, &picture_series_t::previous},
    {GDK_KEY_Up, GDK_KEY_KP_Up, &picture_series_t::previous},
    {GDK_KEY_Page_Up, GDK_KEY_KP_Page_Up, &picture_series_t::previous},
    {GDK_KEY_Right, GDK_KEY_KP_Right, &picture_series_t::next},
    {GDK_KEY_Down, GDK_KEY_KP_Down, &picture_series_t::next},
    {GDK_KEY_Page_Down, GDK_KEY_KP_Page_Down, &picture_series_t::next},
    {GDK_KEY_Home, GDK_KEY_KP_Home, &picture_series_t::first},
    {GDK_KEY_End, GDK_KEY_KP_End, &picture_series_t::last},
    {GDK_KEY_plus, GDK_KEY_KP_Add, &picture_series_t::zoom_in},
    {GDK_KEY_equal, GDK_KEY_equal, &picture_series_t::zoom_in},  // "+" without Shift on many keyboards
    {GDK_KEY_minus, GDK_KEY_KP_Subtract, &picture_series_t::zoom_out},
    {GDK_KEY_1, GDK_KEY_KP_1, &picture_series_t::one_to_one},
    {GDK_KEY_0, GDK_KEY_KP_0, &picture_series_t::fit},
};

struct pan_key_t {
    guint key;  // with Control
    double right;
    double down;
};

constexpr pan_key_t pan_keys[] = {{GDK_KEY_Left, -pan_step, 0},
                                  {GDK_KEY_Up, 0, -pan_step},
                                  {GDK_KEY_Right, pan_step, 0},
                                  {GDK_KEY_Down, 0, pan_step}};

}  // namespace

bool picture_series_t::take_key(guint key, bool control) {
    const auto* const pan_key =
        std::find_if(std::begin(pan_keys), std::end(pan_keys), [key](const pan_key_t& row) { return row.key == key; });
    if (control && pan_key != std::end(pan_keys)) {
        pan(pan_key->right, pan_key->down);
        return true;
    }
    const auto* const found = std::find_if(std::begin(keys), std::end(keys),
                                           [key](const key_t& row) { return row.key == key || row.keypad == key; });
    if (found == std::end(keys)) {
        return false;
    }
    (this->*found->action)();
    return true;
}

void picture_series_t::go_to(size_t index) {
    index = std::min(index, std::max(count(), size_t{1}) - 1);
    forwards_ = index >= index_;
    index_ = index;
}

std::array<size_t, 2> picture_series_t::neighbours() const {
    const size_t before = index_ == 0 ? index_ : index_ - 1;
    const size_t after = std::min(index_ + 1, std::max(count(), size_t{1}) - 1);
    return forwards_ ? std::array{after, before} : std::array{before, after};
}

}  // namespace taloram
