#pragma once

#include <vector>

#include "libgr/markers/marker_segment.h"

namespace libgr {

class dht_marker_t;

// The scan header (ITU-T T.81 B.2.3). Refuses what baseline does not allow: tables over 1, other than one scan of the
// whole spectrum.
class sos_marker_t : public marker_segment_t {
  public:
    struct element_t {
        uint8_t selector = 0;  // component id
        uint8_t dc_selector = 0;
        uint8_t ac_selector = 0;
    };

    uint8_t ns = 0;  // number of components in the scan
    std::vector<element_t> elements;
    uint8_t ss = 0;  // spectral selection
    uint8_t se = 0;
    uint8_t ah = 0;  // successive approximation
    uint8_t al = 0;
    dht_marker_t* dht_marker = nullptr;  // not owned

    void set_sos_buffer(const libutils::bytes_t& body) { set_buffer(body); }
    void set_dht_marker(dht_marker_t* marker) { dht_marker = marker; }
    [[nodiscard]] bool parse() override;
    void dump() const override;
    void clear() override { *this = sos_marker_t(); }

  private:
    [[nodiscard]] bool parse_elements();
};

}  // namespace libgr
