#pragma once

#include <array>
#include <vector>

#include "libgr/markers/marker_segment.h"

namespace libgr {

class jpeg_iterator;

// Huffman tables (ITU-T T.81 B.2.4.2, codes of annex C). Refuses destinations over 1, more than four tables in one
// segment and symbols that baseline does not know. Tables that a segment does not name keep what an earlier one gave
// them.
class dht_marker_t : public marker_segment_t {
  public:
    static constexpr size_t max_tables = 4;

    struct data_t {
        uint16_t code = 0;
        uint8_t data_bits = 0;   // low nibble of the symbol: bits that follow the code
        uint8_t run_length = 0;  // high nibble: zeros in front of the coefficient
    };
    struct huffman_t {
        std::array<uint8_t, 16> bits{};  // number of codes of 1 to 16 bits
        std::vector<data_t> data;        // one a code, shortest first
    };
    struct table_id_t {
        uint8_t tc = 0;  // class: 0 DC, 1 AC
        uint8_t th = 0;  // destination
    };

    size_t length = 0;               // number of tables read from the segment
    std::vector<table_id_t> tables;  // their classes and destinations, in file order
    std::array<huffman_t, 2> dc;     // by destination
    std::array<huffman_t, 2> ac;

    void set_dht_buffer(const libutils::bytes_t& body) { set_buffer(body); }
    [[nodiscard]] bool parse() override;
    void dump() const override;
    void clear() override { *this = dht_marker_t(); }

  private:
    [[nodiscard]] bool parse_table(jpeg_iterator& at);
    [[nodiscard]] bool parse_symbols(jpeg_iterator& at, huffman_t& table);
};

}  // namespace libgr
