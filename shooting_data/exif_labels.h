#pragma once

#include <array>
#include <string>

// Texts of the EXIF summary. Indexes and codes are the values of EXIF 2.32 tags or of maker-note tags.
namespace taloram {

// By MeteringMode (0x9207) 0 to 7. initexif() replaces two of them.
extern std::array<std::string, 8> meteringmode;

inline constexpr char expprogs[] = "NMPASCapl";  // ExposureProgram (0x8822) 0 to 8

inline constexpr std::array focusmode = {"AF", "MF"};
inline constexpr std::array processrange = {"Normal", "Soft", "Hard", "Unknown"};  // Contrast, Sharpness
inline constexpr std::array saturation = {"Normal", "Low", "High", "Unknown"};
inline constexpr std::array whitebal = {"Auto WB", "Manual WB", "Unknown"};

// The older Olympus maker note.
inline constexpr std::array whitebalance_code = {"Unknown", "Auto WB", "Preset "};
inline constexpr std::array whitebalance_preset = {"Unknown", "Unknown", "3000K", "3700K", "4000K",
                                                   "4500K",   "5500K",   "6500K", "7500K"};
inline constexpr std::array sharpness = {"Normal", "Hard", "Soft"};
inline constexpr std::array olympus_contrast = {"High", "Normal", "Low"};

struct desc_t {
    unsigned long code;  // the largest number in the entry that ends a table
    const char* text;
};
extern const desc_t colorspace[];     // ColorSpace (0xA001)
extern const desc_t pex5focusmode[];  // focus mode of the Pentax maker note
extern const desc_t olym3whitebal[];  // WhiteBalance2 of the Olympus camera settings

// The text of the first entry with `code`, else that of the entry that ends the table.
[[nodiscard]] const char* search_desc(const desc_t* table, unsigned long code);

}  // namespace taloram
