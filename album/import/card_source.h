#pragma once

#include <string>

namespace taloram {

// The directory of a card, given as where it is mounted, that a camera wrote last: of those in DCIM the last by name
// that holds photographs or movies (JEITA CP-3461, DCF: their names begin with a number that only grows). DCIM where
// none does, and `card` where it has no DCIM. Both spellings of the name are known, as some systems show it in small
// letters.
[[nodiscard]] std::string card_source(const std::string& card);

}  // namespace taloram
