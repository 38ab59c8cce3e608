#pragma once

#include <cstdint>
#include <iostream>

#include "libutils/bytes/byte_reader.h"
#include "libutils/bytes/ofsvector.h"
#include "libutils/diagnostics.h"

namespace libgr {

// What the parsers of the header segments share. Each is a view on one segment's body: byte 0 is the first one after
// the two length bytes (ITU-T T.81 annex B.2). Values are big-endian.
//
// parse() reads the view that was set before; a refusal is one line on standard error and gives false, and the fields
// then hold what was read up to there. dump() prints the fields on standard output. clear() returns to the empty state.
class marker_segment_t : public libutils::bytes_t {
  public:
    [[nodiscard]] virtual bool parse() = 0;
    virtual void dump() const = 0;

  protected:
    void set_buffer(const libutils::bytes_t& body) { libutils::bytes_t::operator=(body); }

    [[nodiscard]] libutils::byte_reader reader() const {
        static const libutils::motorola_byteorder order;
        return {*this, order};
    }

    template <typename... Parts>
    [[nodiscard]] static bool refuse(const Parts&... parts) {
        libutils::report(parts...);
        return false;
    }
    [[nodiscard]] static bool refuse_broken() { return refuse("broken JPEG data."); }
    [[nodiscard]] static bool refuse_invalid() { return refuse("invalid JPEG data."); }

    template <typename... Parts>
    static void print_line(const Parts&... parts) {
        std::cout << libutils::join_text(parts...) + '\n';
    }

    [[nodiscard]] static uint8_t high_nibble(uint8_t byte) { return static_cast<uint8_t>(byte >> 4); }
    [[nodiscard]] static uint8_t low_nibble(uint8_t byte) { return static_cast<uint8_t>(byte & 15); }
};

}  // namespace libgr
