#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "libutils/bytes/ofsvector.h"

// The EXIF values that the system keeps. A numeric tag is a vector of its values, empty when the tag is absent; a text
// is stored with all its bytes, the terminating NUL and padding included. Tag numbers are those of the EXIF 2.32
// tables.
namespace libgr::ExifType {

struct rational_t {
    uint32_t numerator = 0;
    uint32_t denominator = 0;
};

struct srational_t {
    int32_t numerator = 0;
    int32_t denominator = 0;
};

using shorts_t = std::vector<uint16_t>;
using longs_t = std::vector<uint32_t>;
using rationals_t = std::vector<rational_t>;
using srationals_t = std::vector<srational_t>;

struct tag_0th_ifd {
    std::string image_description;  // 0x010E
    std::string make;               // 0x010F
    std::string model;              // 0x0110
    shorts_t orientation;           // 0x0112
    rationals_t x_resolution;       // 0x011A
    rationals_t y_resolution;       // 0x011B
    shorts_t resolution_unit;       // 0x0128
    std::string software;           // 0x0131
    std::string date_time;          // 0x0132
    longs_t exif_ifd_offset;        // 0x8769
    longs_t gps_ifd_offset;         // 0x8825

    void clear();
};

struct tag_1st_ifd : tag_0th_ifd {
    longs_t jpeg_interchange_format;         // 0x0201, offset of the thumbnail
    longs_t jpeg_interchange_format_length;  // 0x0202, bytes

    void clear();
};

struct tag_exif_ifd {
    rationals_t exposure_time;            // 0x829A, seconds
    rationals_t f_number;                 // 0x829D
    shorts_t exposure_program;            // 0x8822
    shorts_t iso_speed_ratings;           // 0x8827
    longs_t standard_output_sensitivity;  // 0x8831
    longs_t iso_speed;                    // 0x8833
    std::string date_time_original;       // 0x9003
    std::string date_time_digitized;      // 0x9004
    rationals_t aperture_value;           // 0x9202
    srationals_t exposure_bias_value;     // 0x9204, EV
    rationals_t max_aperture_value;       // 0x9205
    shorts_t metering_mode;               // 0x9207
    shorts_t flash;                       // 0x9209
    rationals_t focal_length;             // 0x920A, mm
    libutils::bytes_t maker_note;         // 0x927C
    shorts_t color_space;                 // 0xA001
    shorts_t white_balance;               // 0xA403
    shorts_t focal_length_in_35mm_film;   // 0xA405, mm
    shorts_t contrast;                    // 0xA408
    shorts_t saturation;                  // 0xA409
    shorts_t sharpness;                   // 0xA40A
    std::string lens_model;               // 0xA434

    void clear();
};

// GPS tags are not read.
struct tag_gps_ifd {
    void clear() {}
};

// Maker note of the older Olympus cameras.
struct tag_olympus_ifd {
    shorts_t focus_mode;         // 0x100B: 0 auto, 1 manual
    rationals_t focus_distance;  // 0x100C
    shorts_t sharpness;          // 0x100F: 0 normal, 1 hard, 2 soft
    shorts_t white_balance;      // 0x1015: 1 auto, 2 preset; number of the preset
    shorts_t contrast;           // 0x1029: 0 high, 1 normal, 2 low

    void clear();
};

// Sub-IFDs of the OM Digital maker note and of the newer Olympus one.
struct tag_olympus3_equipment_ifd {
    std::string lens_model;  // 0x0203

    void clear();
};

struct tag_olympus3_camerasettings_ifd {
    shorts_t white_balance2;             // 0x0500
    shorts_t white_balance_temperature;  // 0x0501, kelvin
    longs_t stacked_image;               // 0x0804: kind (1 is live composite), frames

    void clear();
};

struct tag_olympus3_focusinfo_ifd {
    shorts_t auto_focus;           // 0x0209: 0 manual
    shorts_t zoom_step_count;      // 0x0300
    shorts_t focus_step_count;     // 0x0301
    shorts_t focus_step_infinity;  // 0x0303
    shorts_t focus_step_near;      // 0x0304
    rationals_t focus_distance;    // 0x0305
    shorts_t af_point;             // 0x0308
    shorts_t focus_info_031b;      // 0x031B

    void clear();
};

// Pentax maker note as cameras made by Ricoh write it.
struct tag_pentax5_ifd {
    shorts_t focus_mode;          // 0x000D
    shorts_t focus_position;      // 0x0010
    shorts_t white_balance;       // 0x0019
    shorts_t white_balance_mode;  // 0x001A

    void clear();
};

}  // namespace libgr::ExifType
