#pragma once

#include <functional>

namespace libutils {

// Asked again and again by long work, between two files and between two blocks of a large one: false ends the work,
// and stays the answer from then on. It may take its time where the work is to hold. Empty: the work goes on.
using goes_on_t = std::function<bool()>;

[[nodiscard]] inline bool goes_on(const goes_on_t& asked) {
    return !asked || asked();
}

}  // namespace libutils
