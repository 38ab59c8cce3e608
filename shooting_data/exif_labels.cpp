#include "shooting_data/exif_labels.h"

#include <climits>

namespace taloram {

std::array<std::string, 8> meteringmode = {"[Unk]", "[AVE]", "[AVG]", "[SPT]", "[MUL]", "[ESP]", "[PAR]", "[OTH]"};

constexpr desc_t colorspace[] = {
    {0x1, "sRGB"},
    {0xFFFF, "Uncalibrated"},
    {ULONG_MAX, "Unknown"},
};

constexpr desc_t pex5focusmode[] = {
    {0x0, "Normal"},
    {0x1, "Macro"},
    {0x2, "Infinity"},
    {0x3, "Manual"},
    {0x4, "Super Macro"},
    {0x5, "Pan Focus"},
    {0x10, "AF-S (Focus-priority)"},
    {0x11, "AF-C (Focus-priority)"},
    {0x12, "AF-A (Focus-priority)"},
    {0x20, "Contrast-detect (Focus-priority)"},
    {0x21, "Tracking Contrast-detect (Focus-priority)"},
    {0x110, "AF-S (Release-priority)"},
    {0x111, "AF-C (Release-priority)"},
    {0x112, "AF-A (Release-priority)"},
    {0x120, "Contrast-detect (Release-priority)"},
    {ULONG_MAX, "Unknown"},
};

constexpr desc_t olym3whitebal[] = {
    {0x0, "Auto WB"},
    {0x1, "Auto (Keep Warm Color Off)"},
    {0x10, "7500K"},
    {0x11, "6000K"},
    {0x12, "5300K"},
    {0x14, "3000K"},
    {0x15, "3600K"},
    {0x16, "Auto Setup"},
    {0x17, "5500K"},
    {0x21, "6600K"},
    {0x22, "4500K"},
    {0x23, "4000K"},
    {0x24, "White Fluorescent"},
    {0x30, "3600K"},
    {0x43, "Underwater"},
    {0x100, "One Touch WB 1"},
    {0x101, "One Touch WB 2"},
    {0x102, "One Touch WB 3"},
    {0x103, "One Touch WB 4"},
    {0x200, "Custom WB 1"},
    {0x201, "Custom WB 2"},
    {0x202, "Custom WB 3"},
    {0x203, "Custom WB 4"},
    {ULONG_MAX, "Unknown"},
};

const char* search_desc(const desc_t* table, unsigned long code) {
    while (table->code != code && table->code != ULONG_MAX) {
        ++table;
    }
    return table->text;
}

}  // namespace taloram
