#include "libgr/markers/jpeginfo2.h"

#include <algorithm>

#include "libutils/bytes/byte_reader.h"
#include "libutils/diagnostics.h"

namespace libgr {

namespace {

// ITU-T T.81 table B.1.
constexpr uint16_t marker_SOF0 = 0xFFC0;
constexpr uint16_t marker_DHT = 0xFFC4;
constexpr uint16_t marker_SOI = 0xFFD8;
constexpr uint16_t marker_EOI = 0xFFD9;
constexpr uint16_t marker_SOS = 0xFFDA;
constexpr uint16_t marker_DQT = 0xFFDB;
constexpr uint16_t marker_DRI = 0xFFDD;

constexpr uint64_t min_file_size = 8;
constexpr uint64_t code_size = 2;
constexpr uint64_t length_size = 2;  // counted by the length itself

// No picture has as many segments in front of its scan; a list of millions would cost more memory than the file.
constexpr size_t max_segments = 65536;

bool refuse(const char* message) {
    libutils::report(message);
    return false;
}

}  // namespace

jpeginfo2_t::jpeginfo2_t(const char* /*path*/) {
}

bool jpeginfo2_t::analyze(jpegdata2_t& data) {
    static const libutils::motorola_byteorder order;
    const libutils::byte_reader file(data, order);
    markers.clear();
    if (file.size() < min_file_size) {
        return refuse("too few size of JPEG.");
    }
    if (file.u16(0) != marker_SOI) {
        return refuse("not JPEG data.");
    }
    uint64_t p = code_size;
    while (p + code_size < file.size()) {
        const uint16_t code = *file.u16(p);
        if (code == marker_EOI) {
            return false;  // bytes follow
        }
        const uint64_t length = file.u16(p + code_size).value_or(0);
        if (length < length_size || !file.holds(p + code_size, length) || markers.size() == max_segments) {
            return refuse("broken JPEG data.");
        }
        markers.push_back({code, data.subview(p + code_size + length_size, length - length_size)});
        p += code_size + length;
        if (code == marker_SOS) {
            return parse_scan(data.subview(p));
        }
        if (!parse_segment(markers.back())) {
            return false;
        }
    }
    return true;
}

bool jpeginfo2_t::parse_segment(const marker_t& segment) {
    switch (segment.marker) {
        case marker_SOF0:
            sof0_marker.set_sof0_buffer(segment.data);
            return sof0_marker.parse();
        case marker_DHT:
            dht_marker.set_dht_buffer(segment.data);
            return dht_marker.parse();
        case marker_DQT:
            dqt_marker.set_dqt_buffer(segment.data);
            return dqt_marker.parse();
        case marker_DRI:
            dri_marker.set_dri_buffer(segment.data);
            static_cast<void>(dri_marker.parse());
            return true;
        default:
            return true;
    }
}

bool jpeginfo2_t::parse_scan(const libutils::bytes_t& rest) {
    sos_marker.set_sos_buffer(markers.back().data);
    if (!sos_marker.parse()) {
        return refuse("sos_marker.parse() fail.");
    }
    entropy_coded_data = rest;
    markers.push_back({0, rest});
    return true;
}

libutils::bytes_t jpeginfo2_t::get_marker(unsigned short code) const {
    const auto found =
        std::find_if(markers.begin(), markers.end(), [code](const marker_t& m) { return m.marker == code; });
    return found == markers.end() ? libutils::bytes_t() : found->data;
}

}  // namespace libgr
