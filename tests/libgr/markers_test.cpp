#include <gtest/gtest.h>

#include <algorithm>

#include "libgr/markers/jpeginfo2.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

using namespace libgr;
using test_support::blob_t;

namespace {

libutils::bytes_t view_of(const blob_t& bytes) {
    libutils::bytes_t view;
    EXPECT_TRUE(view.resize(bytes.size()));
    std::copy(bytes.begin(), bytes.end(), view.begin());
    return view;
}

blob_t operator+(blob_t a, const blob_t& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

// The diagnostic of a segment and the dump of what was read.
template <typename Marker, void (Marker::*set)(const libutils::bytes_t&)>
std::string parse(const blob_t& body) {
    Marker marker;
    (marker.*set)(view_of(body));
    bool parsed = false;
    const std::string message = test_support::stderr_of([&] { parsed = marker.parse(); });
    EXPECT_EQ(parsed, message.empty());
    return test_support::stdout_of([&] { marker.dump(); }).insert(0, message);
}

const std::string broken = "broken JPEG data.\n";
const std::string invalid = "invalid JPEG data.\n";

TEST(Markers, ParsesSegments) {
    constexpr auto sof0 = parse<sof0_marker_t, &sof0_marker_t::set_sof0_buffer>;
    constexpr auto dqt = parse<dqt_marker_t, &dqt_marker_t::set_dqt_buffer>;
    constexpr auto dht = parse<dht_marker_t, &dht_marker_t::set_dht_buffer>;
    constexpr auto dri = parse<dri_marker_t, &dri_marker_t::set_dri_buffer>;
    constexpr auto sos = parse<sos_marker_t, &sos_marker_t::set_sos_buffer>;
    const std::string frame = "precision: 8\nlines: 258, samples: 772\ncolors: ";
    const std::string c1 = "component_id: 1\nhoriz_factor: 4\nverts_factor: 2\nquatable_sel: ";
    const auto c2 = "component_id: 2\nhoriz_factor: 1\nverts_factor: 1\nquatable_sel: 0\nmax_horiz: 4\nmax_verts: 2\n";
    blob_t numbered(64);
    std::generate(numbered.begin(), numbered.end(), [k = 0]() mutable { return k++; });
    const auto h_table = [](unsigned char id, const blob_t& bits, const blob_t& symbols) {
        return blob_t{id} + bits + blob_t(16 - bits.size()) + symbols;
    };
    const blob_t dc = h_table(0, {1}, {3});
    const struct {
        const char* name;
        std::string (*parse)(const blob_t&);
        blob_t body;
        std::string result;  // or the beginning of the dump
    } cases[] = {
        {"two components", sof0, {8, 1, 2, 3, 4, 2, 1, 0x42, 7, 2, 0x11, 9}, frame + "2\n" + c1 + "17\n" + c2},
        {"no components", sof0, {8, 1, 2, 3, 4, 0}, frame + "0\nmax_horiz: 0\nmax_verts: 0\n"},
        {"selector cut off", sof0, {8, 1, 2, 3, 4, 1, 1, 0x42}, frame + "1\n" + c1 + "0\n"},
        {"component cut off", sof0, {8, 1, 2, 3, 4, 1, 1}, broken},
        {"frame cut off", sof0, {8, 0, 1, 0, 1}, broken},
        {"factor 0", sof0, {8, 0, 1, 0, 1, 1, 1, 0x01, 0}, invalid},
        {"factors 3 and 2", sof0, {8, 0, 1, 0, 1, 2, 1, 0x31, 0, 2, 0x21, 0}, invalid},
        {"12 bits", sof0, {12, 0, 1, 0, 1, 0}, "not support JPEG data. sample_precision=\x0C\n"},
        {"zigzag", dqt, blob_t{2} + numbered,
         "dqt n: 1\n0, 1, 5, 6, 14, 15, 27, 28, 2, 4, 7, 13, 16, 26, 29, 42, 3, 8, 12, 17, 25, 30, 41, 43, 9, 11, 18, "
         "24, 31, 40, 44, 53, 10, 19, 23, 32, 39, 45, 52, 54, 20, 22, 33, 38, 46, 51, 55, 60, 21, 34, 37, 47, 50, 56, "
         "59, 61, 35, 36, 48, 49, 57, 58, 62, 63, \n"},
        {"four tables", dqt, blob_t(260, 3), "dqt n: 4\n3, 3, "},
        {"a byte more", dqt, blob_t(131, 3), broken},
        {"five tables", dqt, blob_t(325, 3), broken},
        {"no table", dqt, {}, broken},
        {"16 bits", dqt, blob_t(65, 0x10), "not support JPEG data. DQT pq=1\n"},
        {"destination 4", dqt, blob_t(65, 4), invalid},
        {"canonical codes, stuffed zero", dht, h_table(0x11, {0, 2, 1}, {1, 2, 0xFF, 0}) + dc,
         "dht length: 2\ntc: 1, th: 1\nentries: 0/0/1, 1/0/2, 4/15/15, \ntc: 0, th: 0\nentries: 0/0/3, \n"},
        {"five tables", dht, dc + dc + dc + dc + dc, broken},
        {"destination 2", dht, h_table(0x12, {1}, {3}), broken},
        {"class 2", dht, h_table(0x20, {1}, {3}), broken},
        {"counts cut off", dht, {0, 1, 0xFF}, broken},
        {"symbols cut off", dht, h_table(0, {0, 2}, {0xFF}), broken},
        {"255 codes", dht, h_table(0, {0, 200, 55}, blob_t(255, 1)), "dht length: 1\n"},
        {"256 codes", dht, h_table(0, {0, 200, 56}, blob_t(256, 1)), broken},
        {"ZRL and EOB", dht, h_table(0x11, {0, 2}, {0xF0, 0}), "dht length: 1\n"},
        {"run without bits", dht, h_table(0, {1}, {0xE0}), "huffman table error: run_length=14, data_bits=0\n"},
        {"2 bytes", dri, {1, 2}, "dri intervals: 258\n"},
        {"3 bytes", dri, {1, 2, 3}, broken},
        {"one component",
         sos,
         {1, 9, 0x10, 0, 63, 0},
         "ns: 1\nscan element selector: 9\ndc huffman table selector: 1\n"},
        {"3 bytes", sos, {0, 0, 63}, broken},
        {"a byte short", sos, {1, 1, 0x11, 0, 63}, broken},
        {"DC table 2", sos, {1, 1, 0x20, 0, 63, 0}, invalid},
        {"AC table 2", sos, {1, 1, 0x02, 0, 63, 0}, invalid},
        {"progressive", sos, {1, 1, 0, 1, 5, 0x21}, "constant value illegal. ss=1, se=5, ah=2, al=1\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.parse(c.body).substr(0, c.result.size()), c.result);
    }
}

TEST(Markers, SplitsFiles) {
    const blob_t soi = {0xFF, 0xD8};
    const blob_t com = {0xFF, 0xFE, 0, 2};
    const blob_t jpeg = test_support::make_jpeg({.segments = {{0xE1, {1, 2, 3}}, {0xE1, {4}}}});
    const struct {
        const char* name;
        blob_t file;
        bool good;
        std::string message;
        size_t segments;
    } cases[] = {
        {"7 bytes", blob_t(7, 0xFF), false, "too few size of JPEG.\n", 0},
        {"no SOI", blob_t(8, 0xFF), false, "not JPEG data.\n", 0},
        {"comment only", soi + com + blob_t{0xFF, 0xD9}, true, "", 1},
        {"bytes after EOI", soi + blob_t{0xFF, 0xD9} + com, false, "", 0},
        {"3 bytes left", soi + com + blob_t{0xFF, 0xFE, 0}, false, broken, 1},
        {"length 1", soi + blob_t{0xFF, 0xFE, 0, 1, 0, 0}, false, broken, 0},
        {"length past the end", soi + blob_t{0xFF, 0xFE, 0, 7} + com, false, broken, 0},
        {"bad restart interval", soi + blob_t{0xFF, 0xDD, 0, 2} + com, true, broken, 2},
        {"bad table", soi + com + blob_t{0xFF, 0xDB, 0, 2} + com, false, broken, 2},
        {"bad scan", soi + blob_t{0xFF, 0xDA, 0, 2} + com, false, broken + "sos_marker.parse() fail.\n", 1},
        {"photograph", jpeg, true, "", 11},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        jpegdata2_t data;
        data.setvector(view_of(c.file), c.name);
        jpeginfo2_t info(c.name);
        bool good = false;
        EXPECT_EQ(test_support::stderr_of([&] { good = info.analyze(data); }), c.message);
        EXPECT_EQ(good, c.good);
        EXPECT_EQ(info.markers.size(), c.segments);
        if (c.file == jpeg) {
            EXPECT_EQ(info.sof0_marker.samples, 64);
            EXPECT_EQ(info.entropy_coded_data.end(), data.end());
            EXPECT_EQ(info.get_marker(0xFFE1).size(), 3U) << "the first of two";
            EXPECT_TRUE(info.get_marker(0xFFE2).empty());
        }
    }
}

}  // namespace
