#include "libgr/exif/makers/pentax5.h"

#include "libgr/exif/ifd_fields.h"
#include "libutils/text/text.h"

namespace libgr {

constexpr desc_t pex5focusmode[] = {
    {0x0, "Normal"},
    {0x1, "Macro"},
    {0x2, "Infinity"},
    {0x3, "Manual"},
    {0x4, "Super Macro"},
    {0x5, "Pan Focus"},
    {0x10, "AF-S (Focus-priority)"},
    {0x11, "AF-C (Focus-priority)"},
    {0x12, "AF-A (Focus-priority)"},
    {0x20, "Contrast-detect (Focus-priority)"},
    {0x21, "Tracking Contrast-detect (Focus-priority)"},
    {0x110, "AF-S (Release-priority)"},
    {0x111, "AF-C (Release-priority)"},
    {0x112, "AF-A (Release-priority)"},
    {0x120, "Contrast-detect (Release-priority)"},
    {ULONG_MAX, "Unknown"},
};

namespace {

constexpr uint64_t header_size = 10;  // in front of the directory

using record_t = ExifType::tag_pentax5_ifd;
constexpr ifd_field_t<record_t> fields[] = {
    {0x000D, &record_t::focus_mode},
    {0x0010, &record_t::focus_position},
    {0x0019, &record_t::white_balance},
    {0x001A, &record_t::white_balance_mode},
};

bool is_ricoh(const tiff_header_t& tiff) {
    return libutils::begins_with_nocase(tiff.tag_0th_ifd.make, "RICOH");
}

bool read_note(tiff_header_t& tiff, libutils::bytes_t& note) {
    if (!note_begins_with(note, "PENTAX")) {
        return true;
    }
    auto ifd = note_directory(note, header_size, tiff.order());
    return ifd && tiff.parse_pentax5_ifd(*ifd, note);
}

std::string focus(const tiff_header_t& tiff) {
    const record_t& note = tiff.tag_pentax5_ifd;
    if (note.focus_mode.empty()) {
        return "";
    }
    return search_desc(pex5focusmode, note.focus_mode.front()) + focus_position(note.focus_position);
}

}  // namespace

constexpr maker_t pentax5_maker = {is_ricoh, read_note, focus};

bool tiff_header_t::parse_pentax5_ifd(bytes_t& ifd, bytes_t& makernote) {
    return read_ifd({ifd, makernote, order(), ifd_source_t::maker_note, "pentax5 ifd: "}, fields, tag_pentax5_ifd);
}

}  // namespace libgr
