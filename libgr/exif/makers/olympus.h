#pragma once

#include <array>

#include "libgr/exif/makers.h"

namespace libgr {

// The older Olympus cameras.
extern const maker_t olympus_maker;

inline constexpr std::array focusmode = {"AF", "MF"};
inline constexpr std::array whitebalance_code = {"Unknown", "Auto WB", "Preset "};
inline constexpr std::array whitebalance_preset = {"Unknown", "Unknown", "3000K", "3700K", "4000K",
                                                   "4500K",   "5500K",   "6500K", "7500K"};
inline constexpr std::array sharpness = {"Normal", "Hard", "Soft"};
inline constexpr std::array olympus_contrast = {"High", "Normal", "Low"};

}  // namespace libgr
