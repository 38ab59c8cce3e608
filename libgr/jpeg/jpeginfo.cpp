#include "libgr/jpeg/jpeginfo.h"

#include "libgr/jpeg/libjpeg_bridge.h"
#include "libgr/jpeg/saved_segments.h"
#include "libutils/diagnostics.h"

namespace libgr {

const std::array<jpeginfo_t::marker_code_t, jpeginfo_t::num_MAX> jpeginfo_t::marker_array = {{
    {num_APP0, 0xE0},
    {num_APP1, 0xE1},
    {num_APP2, 0xE2},
    {num_APP3, 0xE3},
    {num_APP4, 0xE4},
    {num_APP5, 0xE5},
    {num_APP6, 0xE6},
    {num_APP7, 0xE7},
    {num_APP8, 0xE8},
    {num_APP9, 0xE9},
    {num_APP10, 0xEA},
    {num_APP11, 0xEB},
    {num_APP12, 0xEC},
    {num_APP13, 0xED},
    {num_APP14, 0xEE},
    {num_APP15, 0xEF},
    {num_COM, 0xFE},
}};

bool append_segment(std::list<jpeginfo_t::marker_t>& markers, const jpeg_marker_struct& saved) {
    jpeginfo_t::marker_t segment;
    segment.marker = saved.marker;
    if (!segment.data.resize(saved.data_length)) {
        return false;
    }
    std::copy_n(saved.data, saved.data_length, segment.data.begin());
    markers.push_back(segment);
    return true;
}

bool jpeginfo_t::analyze_markers(jpegdata_t& d) {
    markers.clear();
    decompressor_t reader(d);
    bool good = reader.attempt([&] {
        reader.create();
        reader.keep_segments(0xFFFFFFFF);
        reader.read_header();
    });
    if (good) {
        width = reader.info.image_width;
        height = reader.info.image_height;
        for (const auto* saved = reader.info.marker_list; good && saved != nullptr; saved = saved->next) {
            good = append_segment(markers, *saved);
        }
    }
    if (!good) {
        libutils::report(shown_name(d), ": jpeg decompress fail, stop.");
    }
    return good;
}

libutils::bytes_t jpeginfo_t::get_marker(e_marker_num_t n) const {
    if (n < num_MAX) {
        for (const marker_t& segment : markers) {
            if (segment.marker == marker_array[n].code) {
                return segment.data;
            }
        }
    }
    return {};
}

}  // namespace libgr
