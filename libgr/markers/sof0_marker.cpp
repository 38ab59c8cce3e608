#include "libgr/markers/sof0_marker.h"

#include <algorithm>

namespace libgr {

namespace {

constexpr uint64_t components_start = 6;
constexpr uint64_t component_size = 3;
constexpr uint64_t quatable_sel_offset = 4;  // of the component's bytes: kept, though Tqi stands at 2

bool divides(uint8_t factor, uint16_t largest) {
    return factor != 0 && largest % factor == 0;
}

}  // namespace

bool sof0_marker_t::parse() {
    const libutils::byte_reader body = reader();
    if (!body.holds(0, components_start)) {
        return refuse_broken();
    }
    precision = *body.u8(0);
    lines = *body.u16(1);
    samples = *body.u16(3);
    colors = *body.u8(5);
    if (precision != 8) {
        return refuse("not support JPEG data. sample_precision=", static_cast<char>(precision));  // the byte as it is
    }
    if (!parse_components()) {
        return false;
    }
    const bool divisible = std::all_of(components.begin(), components.end(), [this](const component_parameter_t& c) {
        return divides(c.horiz_factor, max_horiz) && divides(c.verts_factor, max_verts);
    });
    return divisible || refuse_invalid();
}

bool sof0_marker_t::parse_components() {
    const libutils::byte_reader body = reader();
    components.assign(colors, {});
    max_horiz = 0;
    max_verts = 0;
    uint64_t at = components_start;
    for (component_parameter_t& component : components) {
        const auto id = body.u8(at);
        const auto factors = body.u8(at + 1);
        if (!id || !factors) {
            return refuse_broken();
        }
        component.component_id = *id;
        component.horiz_factor = high_nibble(*factors);
        component.verts_factor = low_nibble(*factors);
        component.quatable_sel = body.u8(at + quatable_sel_offset).value_or(0);
        max_horiz = std::max<uint16_t>(max_horiz, component.horiz_factor);
        max_verts = std::max<uint16_t>(max_verts, component.verts_factor);
        at += component_size;
    }
    return true;
}

void sof0_marker_t::dump() const {
    print_line("precision: ", unsigned{precision});
    print_line("lines: ", lines, ", samples: ", samples);
    print_line("colors: ", unsigned{colors});
    for (const component_parameter_t& component : components) {
        print_line("component_id: ", unsigned{component.component_id});
        print_line("horiz_factor: ", unsigned{component.horiz_factor});
        print_line("verts_factor: ", unsigned{component.verts_factor});
        print_line("quatable_sel: ", unsigned{component.quatable_sel});
    }
    print_line("max_horiz: ", max_horiz);
    print_line("max_verts: ", max_verts);
}

}  // namespace libgr
