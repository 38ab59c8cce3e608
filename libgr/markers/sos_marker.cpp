#include "libgr/markers/sos_marker.h"

namespace libgr {

namespace {

constexpr uint64_t fixed_size = 4;    // Ns, Ss, Se, Ah/Al
constexpr uint64_t element_size = 2;  // Cs, Td/Ta
constexpr uint8_t max_selector = 1;   // of a baseline table
constexpr uint8_t last_coefficient = 63;

}  // namespace

bool sos_marker_t::parse() {
    const libutils::byte_reader body = reader();
    if (!body.holds(0, fixed_size)) {
        return refuse_broken();
    }
    ns = *body.u8(0);
    const uint64_t elements_size = element_size * ns;
    if (body.size() != elements_size + fixed_size) {
        return refuse_broken();
    }
    if (!parse_elements()) {
        return false;
    }
    ss = *body.u8(elements_size + 1);
    se = *body.u8(elements_size + 2);
    ah = high_nibble(*body.u8(elements_size + 3));
    al = low_nibble(*body.u8(elements_size + 3));
    if (ss != 0 || se != last_coefficient || ah != 0 || al != 0) {
        return refuse("constant value illegal. ss=", unsigned{ss}, ", se=", unsigned{se}, ", ah=", unsigned{ah},
                      ", al=", unsigned{al});
    }
    return true;
}

bool sos_marker_t::parse_elements() {
    const libutils::byte_reader body = reader();
    elements.assign(ns, {});
    uint64_t at = 1;
    for (element_t& element : elements) {
        const uint8_t tables = *body.u8(at + 1);
        element = {*body.u8(at), high_nibble(tables), low_nibble(tables)};
        if (element.dc_selector > max_selector || element.ac_selector > max_selector) {
            return refuse_invalid();
        }
        at += element_size;
    }
    return true;
}

void sos_marker_t::dump() const {
    print_line("ns: ", unsigned{ns});
    for (const element_t& element : elements) {
        print_line("scan element selector: ", unsigned{element.selector});
        print_line("dc huffman table selector: ", unsigned{element.dc_selector});
        print_line("ac huffman table selector: ", unsigned{element.ac_selector});
    }
}

}  // namespace libgr
