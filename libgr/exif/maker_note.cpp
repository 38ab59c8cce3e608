#include "libgr/exif/maker_note.h"

#include <optional>

#include "libgr/exif/ifd_walk.h"
#include "libgr/exif/tiff_header.h"
#include "libutils/text.h"

namespace libgr {

using namespace std::string_view_literals;
using libutils::begins_with_nocase;
using libutils::bytes_t;

namespace {

// Lengths of the headers in front of the main directory.
constexpr uint64_t olympus3_ifd_offset = 12;  // "OLYMPUS" NUL, byte order of the note, two more bytes
constexpr uint64_t om_system_ifd_offset = 16;
constexpr uint64_t pentax5_ifd_offset = 10;

// The newer Olympus layout.
bool is_olympus3_note(const bytes_t& note) {
    return note_begins_with(note, "OLYMPUS\0II"sv) || note_begins_with(note, "OLYMPUS\0MM"sv);
}

// The directory at `offset` of the note, nothing when its entries do not lie inside whole.
std::optional<bytes_t> note_directory(const bytes_t& note, uint64_t offset, const libutils::byteorder& order) {
    const libutils::byte_reader reader(note, order);
    const auto entries = reader.u16(offset);
    if (!entries || !reader.holds(offset, ifd_count_size + ifd_entry_size * *entries)) {
        return std::nullopt;
    }
    return note.subview(offset);
}

}  // namespace

bool note_begins_with(const bytes_t& note, std::string_view text) {
    return std::string_view(reinterpret_cast<const char*>(note.begin()), note.size()).starts_with(text);
}

const libutils::byteorder& note_order(const bytes_t& note, const libutils::byteorder& file) {
    static const libutils::intel_byteorder intel;
    static const libutils::motorola_byteorder motorola;
    if (!is_olympus3_note(note)) {
        return file;
    }
    if (note_begins_with(note, "OLYMPUS\0II"sv)) {
        return intel;
    }
    return motorola;
}

bool tiff_header_t::read_maker_note() {
    bytes_t note = tag_exif_ifd.maker_note;
    const std::string& make = tag_0th_ifd.make;
    if (note.empty()) {
        return true;
    }
    if (begins_with_nocase(make, "OLYMPUS")) {
        has_olympus3_layout = is_olympus3_note(note);
        if (!has_olympus3_layout) {
            return read_olympus_note();
        }
        bytes_t ifd = note.subview(olympus3_ifd_offset);
        return parse_olympus3_ifd(ifd, note);
    }
    if (begins_with_nocase(make, "OM Digital Solutions") && note_begins_with(note, "OM SYSTEM")) {
        auto ifd = note_directory(note, om_system_ifd_offset, order());
        return ifd && parse_olympus3_ifd(*ifd, note);
    }
    if (begins_with_nocase(make, "RICOH") && note_begins_with(note, "PENTAX")) {
        auto ifd = note_directory(note, pentax5_ifd_offset, order());
        return ifd && parse_pentax5_ifd(*ifd, note);
    }
    return true;
}

}  // namespace libgr
