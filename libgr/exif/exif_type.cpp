#include "libgr/exif/exif_type.h"

namespace libgr::ExifType {

void tag_0th_ifd::clear() {
    *this = tag_0th_ifd();
}

void tag_1st_ifd::clear() {
    *this = tag_1st_ifd();
}

void tag_exif_ifd::clear() {
    *this = tag_exif_ifd();
}

void tag_olympus_ifd::clear() {
    *this = tag_olympus_ifd();
}

void tag_olympus3_equipment_ifd::clear() {
    *this = tag_olympus3_equipment_ifd();
}

void tag_olympus3_camerasettings_ifd::clear() {
    *this = tag_olympus3_camerasettings_ifd();
}

void tag_olympus3_focusinfo_ifd::clear() {
    *this = tag_olympus3_focusinfo_ifd();
}

void tag_pentax5_ifd::clear() {
    *this = tag_pentax5_ifd();
}

}  // namespace libgr::ExifType
