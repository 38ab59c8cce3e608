#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "libgr/exif/tiff_header.h"

namespace libgr {

// What the cameras of one maker write of their own, and what it means. Each maker has a file pair in makers/ and a row
// in makers.cpp.
struct maker_t {
    // Whether the photograph is of such a camera, by IFD0 Make and, where that does not tell, by its maker note.
    bool (*is_maker_of)(const tiff_header_t& tiff);

    // Reads a maker note, which is not empty, into the records. One of another layout is left alone; false, which makes
    // the EXIF data unreadable, for one that is damaged.
    bool (*read_note)(tiff_header_t& tiff, libutils::bytes_t& note);

    // Parts of the summary, out of the records; null where what all cameras write is shown, or nothing.
    using texts_t = std::vector<std::string>;
    std::string (*focus)(const tiff_header_t& tiff) = nullptr;          // mode and distance; "" when unknown
    std::string (*white_balance)(const tiff_header_t& tiff) = nullptr;  // "" when unknown
    texts_t (*rendering)(const tiff_header_t& tiff) = nullptr;          // sharpness and the like, each may be ""
    std::string (*stacking)(const tiff_header_t& tiff) = nullptr;       // of how many exposures; "" of one
};

// The row of a photograph's maker; null when its cameras write nothing of their own that is known.
[[nodiscard]] const maker_t* find_maker(const tiff_header_t& tiff);

// For the rows: how a note begins; the directory at `offset` of it, nothing when its entries do not lie inside whole;
// "(P=<first>)", "" when there is none.
[[nodiscard]] bool note_begins_with(const libutils::bytes_t& note, std::string_view text);
[[nodiscard]] std::optional<libutils::bytes_t> note_directory(const libutils::bytes_t& note, uint64_t offset,
                                                              const libutils::byteorder& order);
[[nodiscard]] std::string focus_position(const ExifType::shorts_t& position);

}  // namespace libgr
