#include "libgr/exif/app1_marker.h"

#include <cstring>

namespace libgr {

namespace {

constexpr char exif_identifier[] = "Exif";  // with its NUL
constexpr size_t tiff_start = sizeof exif_identifier + 1;

}  // namespace

void app1_marker_t::set_app1_buffer(const libutils::bytes_t& app1) {
    libutils::bytes_t::operator=(app1);
}

bool app1_marker_t::is_exif() const {
    return size() >= sizeof exif_identifier && std::memcmp(begin(), exif_identifier, sizeof exif_identifier) == 0;
}

bool app1_marker_t::parse() {
    if (!is_exif()) {
        return false;
    }
    tiff_header.set_tiff_buffer(subview(tiff_start));
    return tiff_header.parse();
}

void app1_marker_t::clear() {
    libutils::bytes_t::clear();
    tiff_header.clear();
}

}  // namespace libgr
