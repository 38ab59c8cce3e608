#pragma once

#include <array>
#include <string>

#include "libgr/exif/code_labels.h"
#include "libgr/exif/makers/olympus.h"
#include "libgr/exif/makers/om_system.h"
#include "libgr/exif/makers/pentax5.h"

// Texts of the EXIF summary. Indexes and codes are the values of EXIF 2.32 tags; those of maker-note tags stand where
// the notes are read.
namespace taloram {

using libgr::desc_t;
using libgr::focusmode;
using libgr::olym3whitebal;
using libgr::olympus_contrast;
using libgr::pex5focusmode;
using libgr::search_desc;
using libgr::sharpness;
using libgr::whitebalance_code;
using libgr::whitebalance_preset;

// By MeteringMode (0x9207) 0 to 7. initexif() replaces two of them.
extern std::array<std::string, 8> meteringmode;

inline constexpr char expprogs[] = "NMPASCapl";  // ExposureProgram (0x8822) 0 to 8

inline constexpr std::array processrange = {"Normal", "Soft", "Hard", "Unknown"};  // Contrast, Sharpness
inline constexpr std::array saturation = {"Normal", "Low", "High", "Unknown"};
inline constexpr std::array whitebal = {"Auto WB", "Manual WB", "Unknown"};

extern const desc_t colorspace[];  // ColorSpace (0xA001)

}  // namespace taloram
