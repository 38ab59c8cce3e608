#include <map>
#include <optional>

#include "libgr/exif/ifd_fields.h"
#include "libgr/exif/maker_note.h"
#include "libgr/exif/tiff_header.h"

namespace libgr {

namespace {

using equipment_t = ExifType::tag_olympus3_equipment_ifd;
constexpr ifd_field_t<equipment_t> equipment_fields[] = {
    {0x0203, &equipment_t::lens_model},
};

using camerasettings_t = ExifType::tag_olympus3_camerasettings_ifd;
constexpr ifd_field_t<camerasettings_t> camerasettings_fields[] = {
    {0x0500, &camerasettings_t::white_balance2},
    {0x0501, &camerasettings_t::white_balance_temperature},
    {0x0804, &camerasettings_t::stacked_image},
};

using focusinfo_t = ExifType::tag_olympus3_focusinfo_ifd;
constexpr ifd_field_t<focusinfo_t> focusinfo_fields[] = {
    {0x0209, &focusinfo_t::auto_focus},       {0x0300, &focusinfo_t::zoom_step_count},
    {0x0301, &focusinfo_t::focus_step_count}, {0x0303, &focusinfo_t::focus_step_infinity},
    {0x0304, &focusinfo_t::focus_step_near},  {0x0305, &focusinfo_t::focus_distance},
    {0x0308, &focusinfo_t::af_point},         {0x031B, &focusinfo_t::focus_info_031b},
};

// The sub-directories that the main directory points to.
struct sub_ifd_t {
    uint16_t tag;
    bool (tiff_header_t::*parse)(libutils::bytes_t& ifd, libutils::bytes_t& makernote);
};
constexpr sub_ifd_t sub_ifds[] = {
    {0x2010, &tiff_header_t::parse_olympus3_equipment_ifd},
    {0x2020, &tiff_header_t::parse_olympus3_camerasettings_ifd},
    {0x2050, &tiff_header_t::parse_olympus3_focusinfo_ifd},
};

// Where the sub-directory of an entry starts: it is the value itself (older cameras) or the value is its offset.
std::optional<uint32_t> sub_ifd_offset(const ifd_entry_t& entry, const libutils::byteorder& order) {
    if (entry.type == exiftype_undefined && !entry.inlined) {
        return entry.offset;
    }
    return libutils::byte_reader(entry.value, order).u32(0);
}

}  // namespace

bool tiff_header_t::parse_olympus3_ifd(bytes_t& ifd, bytes_t& makernote) {
    const libutils::byteorder& order_of_note = note_order(makernote, order());
    std::map<uint16_t, uint32_t> offsets;  // by tag, the first of several
    const auto keep_offset = [&](const ifd_entry_t& entry) {
        if (const auto start = sub_ifd_offset(entry, order_of_note)) {
            offsets.emplace(entry.tag, *start);
        }
    };
    if (!walk_ifd({ifd, makernote, order_of_note, ifd_source_t::maker_note, "olympus3 ifd: "}, keep_offset)) {
        return false;
    }
    for (const sub_ifd_t& sub : sub_ifds) {
        if (const auto found = offsets.find(sub.tag); found != offsets.end()) {
            bytes_t sub_ifd = makernote.subview(found->second);
            static_cast<void>((this->*sub.parse)(sub_ifd, makernote));  // a bad one is only left out
        }
    }
    return true;
}

bool tiff_header_t::parse_olympus3_equipment_ifd(bytes_t& ifd, bytes_t& makernote) {
    return read_ifd(
        {ifd, makernote, note_order(makernote, order()), ifd_source_t::maker_note, "olympus3 equipment ifd: "},
        equipment_fields, tag_olympus3_equipment_ifd);
}

bool tiff_header_t::parse_olympus3_camerasettings_ifd(bytes_t& ifd, bytes_t& makernote) {
    return read_ifd(
        {ifd, makernote, note_order(makernote, order()), ifd_source_t::maker_note, "olympus3 camerasettings ifd: "},
        camerasettings_fields, tag_olympus3_camerasettings_ifd);
}

bool tiff_header_t::parse_olympus3_focusinfo_ifd(bytes_t& ifd, bytes_t& makernote) {
    return read_ifd(
        {ifd, makernote, note_order(makernote, order()), ifd_source_t::maker_note, "olympus3 focusinfo ifd: "},
        focusinfo_fields, tag_olympus3_focusinfo_ifd);
}

}  // namespace libgr
