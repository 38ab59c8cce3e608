#include "shooting_data/orientation.h"

#include <array>
#include <cstddef>

namespace taloram {

namespace {

// What setting the picture upright takes: its rows and columns are walked from another corner, and swapped.
struct way_t {
    bool from_right;
    bool from_bottom;
    bool swaps;
    bool mirrors;
    unsigned char turns;
};
constexpr std::array<way_t, 8> ways = {{
    {false, false, false, false, 0},  // top_left
    {true, false, false, true, 0},    // top_right
    {true, true, false, false, 2},    // bottom_right
    {false, true, false, true, 0},    // bottom_left
    {false, false, true, true, 0},    // left_top
    {false, true, true, false, 1},    // right_top
    {true, true, true, true, 0},      // right_bottom
    {true, false, true, false, 3},    // left_bottom
}};

const way_t& way_of(orientation_t orientation) {
    return ways[static_cast<size_t>(orientation) - 1];
}

}  // namespace

orientation_t to_orientation(unsigned long value) {
    return value >= 1 && value <= ways.size() ? static_cast<orientation_t>(value) : orientation_t::top_left;
}

bool swaps_sides(orientation_t orientation) {
    return way_of(orientation).swaps;
}

bool is_mirrored(orientation_t orientation) {
    return way_of(orientation).mirrors;
}

unsigned long quarter_turns(orientation_t orientation) {
    return way_of(orientation).turns;
}

bool starts_at_right(orientation_t orientation) {
    return way_of(orientation).from_right;
}

bool starts_at_bottom(orientation_t orientation) {
    return way_of(orientation).from_bottom;
}

}  // namespace taloram
