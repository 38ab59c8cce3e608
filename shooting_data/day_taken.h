#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace taloram {

using day_t = std::chrono::year_month_day;

// The day on which a photograph was taken, by its camera's clock: DateTimeOriginal of the EXIF data in the file `path`,
// of which no more than its header is read. Nothing when they don't tell; what is damaged there is reported.
[[nodiscard]] std::optional<day_t> day_taken(const std::string& path);

// What is written in front of a DateTimeOriginal, "2026:11:21"; nothing when that is no day of the calendar.
[[nodiscard]] std::optional<day_t> read_exif_day(const std::string& text);

}  // namespace taloram
