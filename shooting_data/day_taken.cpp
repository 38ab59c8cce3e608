#include "shooting_data/day_taken.h"

#include <charconv>

#include "libgr/exif/app1_marker.h"
#include "shooting_data/photo_header.h"

namespace taloram {

namespace {

// The number that the characters from `at` on are, 0 when they are none: no day has a 0.
int number_at(const std::string& text, size_t at, size_t length) {
    int value = 0;
    const char* const begin = text.data() + at;
    const auto [end, error] = std::from_chars(begin, begin + length, value);
    return error == std::errc() && end == begin + length && value > 0 ? value : 0;
}

}  // namespace

std::optional<day_t> read_exif_day(const std::string& text) {
    constexpr size_t length = 10;  // EXIF 2.3, DateTimeOriginal: "YYYY:MM:DD HH:MM:SS"
    if (text.size() < length) {
        return std::nullopt;
    }
    const int year = number_at(text, 0, 4);
    const day_t day{std::chrono::year(year), std::chrono::month(static_cast<unsigned>(number_at(text, 5, 2))),
                    std::chrono::day(static_cast<unsigned>(number_at(text, 8, 2)))};
    return year > 0 && day.ok() ? std::optional(day) : std::nullopt;
}

std::optional<day_t> day_taken(const std::string& path) {
    photo_header_t header;
    if (!load_photo_header(header, path)) {
        return std::nullopt;
    }
    const libutils::bytes_t segment = header.app1();
    libgr::app1_marker_t app1;
    app1.set_app1_buffer(segment);
    if (!app1.is_exif()) {
        return std::nullopt;
    }
    // What damaged data told before the damage counts.
    static_cast<void>(app1.parse());
    return read_exif_day(app1.tiff_header.tag_exif_ifd.date_time_original);
}

}  // namespace taloram
