#pragma once

#include <string_view>

#include "libutils/byte_order.h"
#include "libutils/ofsvector.h"

namespace libgr {

[[nodiscard]] bool note_begins_with(const libutils::bytes_t& note, std::string_view text);

// The byte order of a maker note: the one it names itself in the newer Olympus layout, else that of the file.
[[nodiscard]] const libutils::byteorder& note_order(const libutils::bytes_t& note, const libutils::byteorder& file);

}  // namespace libgr
