#pragma once

#include <array>

#include "libgr/markers/marker_segment.h"

namespace libgr {

// Quantisation tables (ITU-T T.81 B.2.4.1). Refuses 16-bit tables. Tables of destinations that a segment does not name
// keep what an earlier one gave them.
class dqt_marker_t : public marker_segment_t {
  public:
    static constexpr size_t max_tables = 4;
    using table_t = std::array<uint8_t, 64>;  // natural order

    uint8_t n = 0;                                   // number of tables in the segment
    std::array<table_t, max_tables> tables{};        // by destination
    std::array<uint8_t, max_tables> destinations{};  // of the n tables, in file order

    void set_dqt_buffer(const libutils::bytes_t& body) { set_buffer(body); }
    [[nodiscard]] bool parse() override;
    void dump() const override;
    void clear() override { *this = dqt_marker_t(); }
};

}  // namespace libgr
