#include "libgr/markers/dri_marker.h"

namespace libgr {

bool dri_marker_t::parse() {
    const libutils::byte_reader body = reader();
    if (body.size() != sizeof intervals) {
        return refuse_broken();
    }
    intervals = *body.u16(0);
    return true;
}

void dri_marker_t::dump() const {
    print_line("dri intervals: ", intervals);
}

}  // namespace libgr
