#pragma once

#include "libgr/markers/marker_segment.h"

namespace libgr {

// The restart interval (ITU-T T.81 B.2.4.4).
class dri_marker_t : public marker_segment_t {
  public:
    uint16_t intervals = 0;  // MCUs, 0 for none

    void set_dri_buffer(const libutils::bytes_t& body) { set_buffer(body); }
    [[nodiscard]] bool parse() override;
    void dump() const override;
    void clear() override { *this = dri_marker_t(); }
};

}  // namespace libgr
