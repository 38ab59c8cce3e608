#pragma once

#include <array>
#include <cstdint>
#include <functional>

#include "libutils/bytes/byte_reader.h"
#include "libutils/bytes/ofsvector.h"

namespace libgr {

// TIFF 6.0, section 2: a directory is a 16-bit count and that many entries of tag, type, count and value or offset.
constexpr uint64_t ifd_count_size = 2;
constexpr uint64_t ifd_entry_size = 12;
constexpr uint64_t ifd_inline_size = 4;  // longest value that stands in the entry itself

constexpr uint16_t exiftype_undefined = 7;

// Bytes of one value, by type. SBYTE (6), FLOAT (11) and DOUBLE (12) are not read: they count as empty.
constexpr std::array<uint8_t, 14> exiftypesize = {0, 1, 1, 2, 4, 8, 0, 1, 2, 4, 8, 0, 0, 4};

// A directory and what is needed to read it.
struct ifd_source_t {
    enum kind_t {
        main,       // IFD0 and IFD1: a value that starts inside the data is cut at its end
        exif,       // values must lie inside whole, and 4 bytes must follow each entry
        maker_note  // values must lie inside whole, and so must the directory
    };

    const libutils::bytes_t& ifd;   // starts at the entry count
    const libutils::bytes_t& data;  // offsets count from its first byte
    const libutils::byteorder& order;
    kind_t kind;
    const char* name = "";  // what diagnostics about a maker note begin with
};

struct ifd_entry_t {
    uint16_t tag = 0;
    uint16_t type = 0;
    bool inlined = false;     // the value stands in the entry
    uint32_t offset = 0;      // else it stands here in the data
    libutils::bytes_t value;  // count times size of the type, for a `main` directory less what was cut
};

// Calls `visit` for every entry whose value can be had, in file order. A bad entry costs one line on standard error and
// is left out; a directory that ends before its entries do costs one line and ends the walk. Values that overlap so
// often that together they are several times longer than the data are left out like bad ones, so that what visitors
// keep is bounded. False, after a line, when a maker note's directory is not whole.
[[nodiscard]] bool walk_ifd(const ifd_source_t& source, const std::function<void(const ifd_entry_t&)>& visit);

}  // namespace libgr
