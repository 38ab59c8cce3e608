#pragma once

#include <ios>
#include <string>
#include <vector>

#include "libgr/exif/tiff_header.h"

namespace taloram {

// Greatest common divisor; gcd(0, 0) is 0.
[[nodiscard]] unsigned int gcd(unsigned int a, unsigned int b);

// One thing that the summary says. A tag that is missing leaves no item.
struct summary_item_t {
    enum line_t { camera, lens, exposure, shooting, picture, stacking };

    line_t line;
    std::string text;
    bool after_comma = false;  // also where it is the first of its line
};

// In the order of the summary. Numbers are written in the classic form with the notation and precision of `format`,
// which the items leave there.
[[nodiscard]] std::vector<summary_item_t> summary_items(const libgr::tiff_header_t& tiff, std::ios_base& format);

}  // namespace taloram
