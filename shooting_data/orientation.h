#pragma once

#include <cstdint>

namespace taloram {

// EXIF Orientation (0x0112): which sides of the scene the file's first row and first column are.
enum class orientation_t : uint16_t {
    top_left = 1,  // upright
    top_right = 2,
    bottom_right = 3,
    bottom_left = 4,
    left_top = 5,
    right_top = 6,
    right_bottom = 7,
    left_bottom = 8,
};

// Any other value than 1 to 8 asks for nothing.
[[nodiscard]] orientation_t to_orientation(unsigned long value);

// The rows of the file are the columns of the scene.
[[nodiscard]] bool swaps_sides(orientation_t orientation);

// Asks for a mirrored scene, which a turn alone can't make.
[[nodiscard]] bool is_mirrored(orientation_t orientation);

// Clockwise, 0 to 3, that set the file upright; 0 for a mirrored one.
[[nodiscard]] unsigned long quarter_turns(orientation_t orientation);

// Whether the scene's left side lies to the right of the file's, and its top below: before sides are swapped.
[[nodiscard]] bool starts_at_right(orientation_t orientation);
[[nodiscard]] bool starts_at_bottom(orientation_t orientation);

}  // namespace taloram
