#include "libgr/markers/jpeginfo2.h"
#include "tests/fuzz/fuzz_target.h"

using namespace libgr;

namespace {

template <typename Marker, void (Marker::*set)(const libutils::bytes_t&)>
void parse_segment(const libutils::bytes_t& body) {
    Marker marker;
    (marker.*set)(body);
    static_cast<void>(marker.parse());
    marker.dump();
}

constexpr void (*segment_parsers[])(const libutils::bytes_t&) = {
    parse_segment<sof0_marker_t, &sof0_marker_t::set_sof0_buffer>,
    parse_segment<dqt_marker_t, &dqt_marker_t::set_dqt_buffer>,
    parse_segment<dht_marker_t, &dht_marker_t::set_dht_buffer>,
    parse_segment<dri_marker_t, &dri_marker_t::set_dri_buffer>,
    parse_segment<sos_marker_t, &sos_marker_t::set_sos_buffer>,
};

void read_file(const libutils::bytes_t& bytes) {
    jpegdata2_t file;
    file.setvector(bytes, "P");
    jpeginfo2_t info("P");
    static_cast<void>(info.analyze(file));
    for (const auto& marker : info.markers) {
        fuzz::require(marker.data.size() <= bytes.size() && info.get_marker(marker.marker).size() <= bytes.size());
    }
}

}  // namespace

// A first byte of 0 to 4 sends the rest to the parser of one kind of segment.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const fuzz::silence_t silence;
    const libutils::bytes_t input = fuzz::view_of(data, size);
    if (size != 0 && data[0] < std::size(segment_parsers)) {
        segment_parsers[data[0]](input.subview(1));
    } else {
        read_file(input);
    }
    return 0;
}
