#pragma once

#include <vector>

#include "libgr/markers/marker_segment.h"

namespace libgr {

// The baseline frame header (ITU-T T.81 B.2.2). Refuses samples of other than 8 bits, sampling factors of 0 and
// factors that do not divide the largest one.
class sof0_marker_t : public marker_segment_t {
  public:
    struct component_parameter_t {
        uint8_t component_id = 0;
        uint8_t horiz_factor = 0;  // Hi, 1 to 4
        uint8_t verts_factor = 0;  // Vi
        uint8_t quatable_sel = 0;  // read two bytes further on than Tqi, 0 past the end; shown by dump() only
    };

    uint8_t precision = 0;  // bits a sample
    uint16_t lines = 0;     // height in pixels
    uint16_t samples = 0;   // width in pixels
    uint8_t colors = 0;     // number of components
    std::vector<component_parameter_t> components;
    uint16_t max_horiz = 0;  // largest factors of all components
    uint16_t max_verts = 0;

    void set_sof0_buffer(const libutils::bytes_t& body) { set_buffer(body); }
    [[nodiscard]] bool parse() override;
    void dump() const override;
    void clear() override { *this = sof0_marker_t(); }

  private:
    [[nodiscard]] bool parse_components();
};

}  // namespace libgr
