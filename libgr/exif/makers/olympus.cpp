#include "libgr/exif/makers/olympus.h"

#include "libgr/exif/code_labels.h"
#include "libgr/exif/ifd_fields.h"
#include "libutils/text/text.h"

namespace libgr {

namespace {

constexpr uint64_t header_size = 8;  // "OLYMP" NUL and two more bytes; the oldest notes have none

using record_t = ExifType::tag_olympus_ifd;
constexpr ifd_field_t<record_t> fields[] = {
    {0x100B, &record_t::focus_mode},    {0x100C, &record_t::focus_distance}, {0x100F, &record_t::sharpness},
    {0x1015, &record_t::white_balance}, {0x1029, &record_t::contrast},
};

bool is_olympus(const tiff_header_t& tiff) {
    return libutils::begins_with_nocase(tiff.tag_0th_ifd.make, "OLYMPUS");
}

bool read_note(tiff_header_t& tiff, libutils::bytes_t& note) {
    if (!note_begins_with(note, "OLYMP")) {
        return tiff.parse_olympus_ifd(note);
    }
    const uint64_t entries = libutils::byte_reader(note, tiff.order()).u16(header_size).value_or(0);
    const uint64_t ifd_size = ifd_count_size + ifd_entry_size * entries;
    if (entries == 0 || note.size() < ifd_size) {
        return false;
    }
    // The test above leaves the header out, so the directory may end up to 8 bytes past the note.
    libutils::bytes_t ifd = tiff.subview(note.offset - tiff.offset + header_size, ifd_size);
    return tiff.parse_olympus_ifd(ifd);
}

std::string focus(const tiff_header_t& tiff) {
    const record_t& note = tiff.tag_olympus_ifd;
    if (note.focus_mode.empty()) {
        return "";
    }
    const uint16_t mode = note.focus_mode.front();
    std::string text = label_of(focusmode, mode, "U");
    if (mode == 1 && !note.focus_distance.empty() && note.focus_distance.front().denominator != 0) {
        const ExifType::rational_t& distance = note.focus_distance.front();
        text += "(P=" + std::to_string(distance.numerator / distance.denominator) + ")";
    }
    return text;
}

std::string white_balance(const tiff_header_t& tiff) {
    const ExifType::shorts_t& balance = tiff.tag_olympus_ifd.white_balance;
    std::string text = balance.empty() ? "" : label_of(whitebalance_code, balance[0], "");
    if (balance.size() > 1 && balance[0] == 2) {
        text += label_of(whitebalance_preset, balance[1], "");
    }
    return text;
}

std::vector<std::string> rendering(const tiff_header_t& tiff) {
    const record_t& note = tiff.tag_olympus_ifd;
    return {note.sharpness.empty() ? "" : label_of(sharpness, note.sharpness.front(), "Unknown"),
            note.contrast.empty() ? "" : label_of(olympus_contrast, note.contrast.front(), "Unknown")};
}

}  // namespace

constexpr maker_t olympus_maker = {is_olympus, read_note, focus, white_balance, rendering};

bool tiff_header_t::parse_olympus_ifd(bytes_t& ifd) {
    return read_ifd({ifd, *this, order(), ifd_source_t::maker_note, "olympus ifd: "}, fields, tag_olympus_ifd);
}

}  // namespace libgr
