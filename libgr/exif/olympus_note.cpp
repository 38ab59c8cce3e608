#include "libgr/exif/ifd_fields.h"
#include "libgr/exif/maker_note.h"
#include "libgr/exif/tiff_header.h"

namespace libgr {

namespace {

constexpr uint64_t header_size = 8;  // "OLYMP" NUL and two more bytes; the oldest notes have none

using record_t = ExifType::tag_olympus_ifd;
constexpr ifd_field_t<record_t> fields[] = {
    {0x100B, &record_t::focus_mode},    {0x100C, &record_t::focus_distance}, {0x100F, &record_t::sharpness},
    {0x1015, &record_t::white_balance}, {0x1029, &record_t::contrast},
};

}  // namespace

bool tiff_header_t::read_olympus_note() {
    const bytes_t& note = tag_exif_ifd.maker_note;
    if (!note_begins_with(note, "OLYMP")) {
        bytes_t ifd = note;
        return parse_olympus_ifd(ifd);
    }
    const uint64_t entries = libutils::byte_reader(note, order()).u16(header_size).value_or(0);
    const uint64_t ifd_size = ifd_count_size + ifd_entry_size * entries;
    if (entries == 0 || note.size() < ifd_size) {
        return false;
    }
    // The test above leaves the header out, so the directory may end up to 8 bytes behind the note.
    bytes_t ifd = subview(note.offset - offset + header_size, ifd_size);
    return parse_olympus_ifd(ifd);
}

bool tiff_header_t::parse_olympus_ifd(bytes_t& ifd) {
    return read_ifd({ifd, *this, order(), ifd_source_t::maker_note, "olympus ifd: "}, fields, tag_olympus_ifd);
}

}  // namespace libgr
