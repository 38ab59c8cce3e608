#include "shooting_data/exif_labels.h"

#include <climits>

namespace taloram {

std::array<std::string, 8> meteringmode = {"[Unk]", "[AVE]", "[AVG]", "[SPT]", "[MUL]", "[ESP]", "[PAR]", "[OTH]"};

constexpr desc_t colorspace[] = {
    {0x1, "sRGB"},
    {0xFFFF, "Uncalibrated"},
    {ULONG_MAX, "Unknown"},
};

}  // namespace taloram
