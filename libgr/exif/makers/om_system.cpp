#include "libgr/exif/makers/om_system.h"

#include <map>
#include <optional>

#include "libgr/exif/ifd_fields.h"
#include "libgr/exif/makers/olympus.h"
#include "libutils/text/text.h"

namespace libgr {

using namespace std::string_view_literals;
using libutils::begins_with_nocase;

constexpr desc_t olym3whitebal[] = {
    {0x0, "Auto WB"},
    {0x1, "Auto (Keep Warm Color Off)"},
    {0x10, "7500K"},
    {0x11, "6000K"},
    {0x12, "5300K"},
    {0x14, "3000K"},
    {0x15, "3600K"},
    {0x16, "Auto Setup"},
    {0x17, "5500K"},
    {0x21, "6600K"},
    {0x22, "4500K"},
    {0x23, "4000K"},
    {0x24, "White Fluorescent"},
    {0x30, "3600K"},
    {0x43, "Underwater"},
    {0x100, "One Touch WB 1"},
    {0x101, "One Touch WB 2"},
    {0x102, "One Touch WB 3"},
    {0x103, "One Touch WB 4"},
    {0x200, "Custom WB 1"},
    {0x201, "Custom WB 2"},
    {0x202, "Custom WB 3"},
    {0x203, "Custom WB 4"},
    {ULONG_MAX, "Unknown"},
};

namespace {

// Lengths of the headers in front of the main directory.
constexpr uint64_t om_system_header_size = 16;
constexpr uint64_t newer_olympus_header_size = 12;  // "OLYMPUS" NUL, byte order of the note, two more bytes

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

bool is_newer_olympus_note(const libutils::bytes_t& note) {
    return note_begins_with(note, "OLYMPUS\0II"sv) || note_begins_with(note, "OLYMPUS\0MM"sv);
}

// The one that a newer Olympus note names itself, else that of the file.
const libutils::byteorder& note_order(const libutils::bytes_t& note, const libutils::byteorder& file) {
    static const libutils::intel_byteorder intel;
    static const libutils::motorola_byteorder motorola;
    if (!is_newer_olympus_note(note)) {
        return file;
    }
    if (note_begins_with(note, "OLYMPUS\0II"sv)) {
        return intel;
    }
    return motorola;
}

bool is_om_system(const tiff_header_t& tiff) {
    return begins_with_nocase(tiff.tag_0th_ifd.make, "OM Digital");
}

bool read_om_system_note(tiff_header_t& tiff, libutils::bytes_t& note) {
    if (!begins_with_nocase(tiff.tag_0th_ifd.make, "OM Digital Solutions") || !note_begins_with(note, "OM SYSTEM")) {
        return true;
    }
    auto ifd = note_directory(note, om_system_header_size, tiff.order());
    return ifd && tiff.parse_olympus3_ifd(*ifd, note);
}

bool is_newer_olympus(const tiff_header_t& tiff) {
    return begins_with_nocase(tiff.tag_0th_ifd.make, "OLYMPUS") && is_newer_olympus_note(tiff.tag_exif_ifd.maker_note);
}

bool read_newer_olympus_note(tiff_header_t& tiff, libutils::bytes_t& note) {
    libutils::bytes_t ifd = note.subview(newer_olympus_header_size);
    return tiff.parse_olympus3_ifd(ifd, note);
}

std::string focus(const tiff_header_t& tiff) {
    const focusinfo_t& note = tiff.tag_olympus3_focusinfo_ifd;
    if (note.auto_focus.empty()) {
        return "";
    }
    return focusmode[note.auto_focus.front() != 0 ? 0 : 1] + focus_position(note.focus_step_count);
}

std::string white_balance(const tiff_header_t& tiff) {
    const auto& balance = tiff.tag_olympus3_camerasettings_ifd.white_balance2;
    return balance.empty() ? "" : search_desc(olym3whitebal, balance.front());
}

std::string live_composite(const tiff_header_t& tiff) {
    const auto& stacked = tiff.tag_olympus3_camerasettings_ifd.stacked_image;
    if (stacked.empty() || stacked.front() != 1) {
        return "";
    }
    return "LiveComp " + (stacked.size() > 1 ? std::to_string(stacked[1]) : "") + " frames";
}

}  // namespace

constexpr maker_t om_system_maker = {is_om_system, read_om_system_note, focus, white_balance, nullptr, live_composite};
constexpr maker_t newer_olympus_maker = {is_newer_olympus, read_newer_olympus_note, focus, white_balance};

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
