#pragma once

#include <ctime>
#include <optional>
#include <string>

#include "shooting_data/day_taken.h"

namespace taloram {

// The day of a moment, in local time; nothing when the system can't tell.
[[nodiscard]] std::optional<day_t> local_day(std::time_t moment);

// The name of a day's album, eight digits as in "20261121".
[[nodiscard]] std::string day_name(const day_t& day);

// A day as the locale writes it.
[[nodiscard]] std::string day_title(const day_t& day);

}  // namespace taloram
