#include "libgr/exif/tiff_header.h"

#include "libgr/exif/ifd_fields.h"
#include "libgr/exif/makers.h"
#include "libutils/diagnostics.h"

namespace libgr {

namespace {

constexpr uint64_t header_size = 8;  // byte-order mark, version, offset of IFD0
constexpr uint16_t version = 42;

// Length of an IFD0 or IFD1 view and least length of the data from the start of an Exif IFD.
uint64_t directory_size(uint64_t entries) {
    return ifd_entry_size * entries + 4;
}

// TIFF tags, EXIF 2.32 table 4, and the pointers of table 3.
using ifd0_t = ExifType::tag_0th_ifd;
constexpr ifd_field_t<ifd0_t> ifd0_fields[] = {
    {0x010E, &ifd0_t::image_description}, {0x010F, &ifd0_t::make},           {0x0110, &ifd0_t::model},
    {0x0112, &ifd0_t::orientation},       {0x011A, &ifd0_t::x_resolution},   {0x011B, &ifd0_t::y_resolution},
    {0x0128, &ifd0_t::resolution_unit},   {0x0131, &ifd0_t::software},       {0x0132, &ifd0_t::date_time},
    {0x8769, &ifd0_t::exif_ifd_offset},   {0x8825, &ifd0_t::gps_ifd_offset},
};

using ifd1_t = ExifType::tag_1st_ifd;
constexpr ifd_field_t<ifd1_t> thumbnail_fields[] = {
    {0x0201, &ifd1_t::jpeg_interchange_format, 4},
    {0x0202, &ifd1_t::jpeg_interchange_format_length, 4},
};

// EXIF 2.32 tables 7 and 8.
using exif_t = ExifType::tag_exif_ifd;
constexpr ifd_field_t<exif_t> exif_fields[] = {
    {0x829A, &exif_t::exposure_time},
    {0x829D, &exif_t::f_number},
    {0x8822, &exif_t::exposure_program},
    {0x8827, &exif_t::iso_speed_ratings},
    {0x8831, &exif_t::standard_output_sensitivity, 4},
    {0x8833, &exif_t::iso_speed, 4},
    {0x9003, &exif_t::date_time_original},
    {0x9004, &exif_t::date_time_digitized},
    {0x9202, &exif_t::aperture_value},
    {0x9204, &exif_t::exposure_bias_value},
    {0x9205, &exif_t::max_aperture_value, 8},
    {0x9207, &exif_t::metering_mode},
    {0x9209, &exif_t::flash, 2},
    {0x920A, &exif_t::focal_length},
    {0x927C, &exif_t::maker_note},
    {0xA001, &exif_t::color_space},
    {0xA403, &exif_t::white_balance},
    {0xA405, &exif_t::focal_length_in_35mm_film},
    {0xA408, &exif_t::contrast},
    {0xA409, &exif_t::saturation},
    {0xA40A, &exif_t::sharpness},
    {0xA434, &exif_t::lens_model},
};

}  // namespace

void tiff_header_t::set_tiff_buffer(const bytes_t& tiff) {
    bytes_t::operator=(tiff);
}

bool tiff_header_t::find_0th_ifd() {
    clear_records();
    if (size() < header_size) {
        libutils::report("too few tiff header size.");
        return false;
    }
    if (!read_byteorder_mark()) {
        libutils::report("byteorder mark not recognized.");
        return false;
    }
    const libutils::byte_reader tiff(*this, order());
    if (tiff.u16(2) != version) {
        libutils::report("not tiff(0x00, 0x2a).");
        return false;
    }
    const uint64_t start = *tiff.u32(4);
    const auto entries = tiff.u16(start);
    if (!entries) {
        libutils::report("value over, offset ", start, " tiff size: ", size());
        return false;
    }
    ifd_0th = subview(start, directory_size(*entries));
    return true;
}

bool tiff_header_t::parse() {
    if (!find_0th_ifd() || !parse_0th_ifd(ifd_0th)) {
        return false;
    }
    const libutils::byte_reader tiff(*this, order());
    const uint64_t start = *tiff.u32(4);
    read_1st_ifd(start + ifd_count_size + ifd_entry_size * *tiff.u16(start));
    return true;
}

bool tiff_header_t::parse_0th_ifd(bytes_t& ifd) {
    return read_ifd({ifd, *this, order(), ifd_source_t::main}, ifd0_fields, tag_0th_ifd) && read_exif_ifd() &&
           read_gps_ifd() && read_maker_note();
}

bool tiff_header_t::read_exif_ifd() {
    if (tag_0th_ifd.exif_ifd_offset.empty()) {
        return true;
    }
    const uint64_t start = tag_0th_ifd.exif_ifd_offset.front();
    if (start >= size()) {
        libutils::report("exif_ifd_offset size exceed: ", start, " > ", size());
        return false;
    }
    const auto entries = libutils::byte_reader(*this, order()).u16(start);
    if (!entries || directory_size(*entries) > size() - start) {
        libutils::report("exif ifd size exceed: ", start, " > ", size());
        return false;
    }
    ifd_exif = subview(start);
    return parse_exif_ifd(ifd_exif);
}

bool tiff_header_t::read_gps_ifd() {
    if (tag_0th_ifd.gps_ifd_offset.empty()) {
        return true;
    }
    const uint64_t start = tag_0th_ifd.gps_ifd_offset.front();
    if (start >= size()) {
        libutils::report("gps_ifd size exceed: ", start, " > ", size());
        return false;
    }
    ifd_gps = subview(start);
    return parse_gps_ifd(ifd_gps);
}

bool tiff_header_t::read_maker_note() {
    bytes_t note = tag_exif_ifd.maker_note;
    const maker_t* const maker = note.empty() ? nullptr : find_maker(*this);
    return maker == nullptr || maker->read_note(*this, note);
}

void tiff_header_t::read_1st_ifd(uint64_t link) {
    const libutils::byte_reader tiff(*this, order());
    const uint64_t start = tiff.u32(link).value_or(0);
    const auto entries = tiff.u16(start);
    if (start != 0 && entries) {
        ifd_1st = subview(start, directory_size(*entries));
        static_cast<void>(parse_1st_ifd(ifd_1st));
    }
}

bool tiff_header_t::parse_1st_ifd(bytes_t& ifd) {
    static_cast<void>(walk_ifd({ifd, *this, order(), ifd_source_t::main}, [this](const ifd_entry_t& entry) {
        store_entry<ifd0_t>(entry, order(), ifd0_fields, tag_1st_ifd);
        store_entry(entry, order(), thumbnail_fields, tag_1st_ifd);
    }));
    if (!tag_1st_ifd.jpeg_interchange_format.empty() && !tag_1st_ifd.jpeg_interchange_format_length.empty()) {
        thumbnail =
            subview(tag_1st_ifd.jpeg_interchange_format.front(), tag_1st_ifd.jpeg_interchange_format_length.front());
    }
    return true;
}

bool tiff_header_t::parse_exif_ifd(bytes_t& ifd) {
    return read_ifd({ifd, *this, order(), ifd_source_t::exif}, exif_fields, tag_exif_ifd);
}

bool tiff_header_t::parse_gps_ifd(bytes_t& /*ifd*/) {
    return true;
}

const libutils::byteorder& tiff_header_t::order() const {
    static const libutils::intel_byteorder intel;
    return byteorder ? *byteorder : static_cast<const libutils::byteorder&>(intel);
}

bool tiff_header_t::read_byteorder_mark() {
    const unsigned char* mark = begin();
    if (mark[0] == 'I' && mark[1] == 'I') {
        byteorder = std::make_unique<libutils::intel_byteorder>();
    } else if (mark[0] == 'M' && mark[1] == 'M') {
        byteorder = std::make_unique<libutils::motorola_byteorder>();
    }
    return byteorder != nullptr;
}

bool tiff_header_t::is_intel() const {
    return dynamic_cast<const libutils::intel_byteorder*>(byteorder.get()) != nullptr;
}

bool tiff_header_t::is_motorola() const {
    return dynamic_cast<const libutils::motorola_byteorder*>(byteorder.get()) != nullptr;
}

void tiff_header_t::byteorderclear() {
    byteorder.reset();
}

void tiff_header_t::clear() {
    bytes_t::clear();
    clear_records();
}

void tiff_header_t::clear_records() {
    byteorderclear();
    for (bytes_t* view : {&ifd_0th, &ifd_exif, &ifd_gps, &ifd_1st, &thumbnail}) {
        view->clear();
    }
    tag_0th_ifd.clear();
    tag_exif_ifd.clear();
    tag_gps_ifd.clear();
    tag_1st_ifd.clear();
    tag_olympus_ifd.clear();
    tag_olympus3_equipment_ifd.clear();
    tag_olympus3_camerasettings_ifd.clear();
    tag_olympus3_focusinfo_ifd.clear();
    tag_pentax5_ifd.clear();
}

}  // namespace libgr
