#include "libgr/exif/makers.h"

#include "libgr/exif/ifd_walk.h"
#include "libgr/exif/makers/olympus.h"
#include "libgr/exif/makers/om_system.h"
#include "libgr/exif/makers/pentax5.h"

namespace libgr {

namespace {

// The first that fits is taken.
constexpr const maker_t* makers[] = {
    &om_system_maker,
    &newer_olympus_maker,
    &olympus_maker,
    &pentax5_maker,
};

}  // namespace

const maker_t* find_maker(const tiff_header_t& tiff) {
    for (const maker_t* maker : makers) {
        if (maker->is_maker_of(tiff)) {
            return maker;
        }
    }
    return nullptr;
}

bool note_begins_with(const libutils::bytes_t& note, std::string_view text) {
    return std::string_view(reinterpret_cast<const char*>(note.begin()), note.size()).starts_with(text);
}

std::optional<libutils::bytes_t> note_directory(const libutils::bytes_t& note, uint64_t offset,
                                                const libutils::byteorder& order) {
    const libutils::byte_reader reader(note, order);
    const auto entries = reader.u16(offset);
    if (!entries || !reader.holds(offset, ifd_count_size + ifd_entry_size * *entries)) {
        return std::nullopt;
    }
    return note.subview(offset);
}

std::string focus_position(const ExifType::shorts_t& position) {
    return position.empty() ? "" : "(P=" + std::to_string(position.front()) + ")";
}

}  // namespace libgr
