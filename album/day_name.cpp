#include "album/day_name.h"

#include <array>
#include <cstdio>

namespace taloram {

std::optional<day_t> local_day(std::time_t moment) {
    struct tm local {};
    if (localtime_r(&moment, &local) == nullptr) {
        return std::nullopt;
    }
    return day_t{std::chrono::year(local.tm_year + 1900), std::chrono::month(static_cast<unsigned>(local.tm_mon) + 1),
                 std::chrono::day(static_cast<unsigned>(local.tm_mday))};
}

std::string day_name(const day_t& day) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%04d%02u%02u", static_cast<int>(day.year()),
                  static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()));
    return text.data();
}

std::string day_title(const day_t& day) {
    const std::chrono::sys_days days(day);
    struct tm date {};
    date.tm_year = static_cast<int>(day.year()) - 1900;
    date.tm_mon = static_cast<int>(static_cast<unsigned>(day.month())) - 1;
    date.tm_mday = static_cast<int>(static_cast<unsigned>(day.day()));
    date.tm_wday = static_cast<int>(std::chrono::weekday(days).c_encoding());
    date.tm_yday = static_cast<int>((days - std::chrono::sys_days(day.year() / 1 / 1)).count());
    std::array<char, 128> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%x", &date)};
}

}  // namespace taloram
