#include <gtest/gtest.h>

#include <algorithm>

#include "libgr/exif/app1_marker.h"
#include "libgr/exif/makers/om_system.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

using namespace libgr;
using namespace std::string_literals;
using test_support::blob_t;
using builder_t = test_support::exif_builder_t;

namespace {

constexpr auto ifd0 = builder_t::ifd0;
constexpr auto exif = builder_t::exif;

struct parsed_t {
    app1_marker_t app1;
    bool good = false;
    std::string message;

    explicit parsed_t(const blob_t& body) {
        libutils::bytes_t view;
        EXPECT_TRUE(view.resize(body.size()));
        std::copy(body.begin(), body.end(), view.begin());
        app1.set_app1_buffer(view);
        message = test_support::stderr_of([this] { good = app1.parse(); });
    }
    const tiff_header_t* operator->() const { return &app1.tiff_header; }
};

blob_t operator+(const std::string& text, const blob_t& bytes) {
    blob_t all(text.begin(), text.end());
    all.insert(all.end(), bytes.begin(), bytes.end());
    return all;
}

blob_t cut(blob_t bytes, size_t size) {
    bytes.resize(size);
    return bytes;
}

// With a make of 7 characters the note lies at byte 64 of the TIFF data.
blob_t with_note(const char* make, const std::string& header, const blob_t& rest, bool motorola = false) {
    return builder_t(motorola).text(ifd0, 0x010F, make).bytes(exif, 0x927C, header + rest).app1();
}

TEST(Exif, ReadsEntriesInBothByteOrders) {
    for (const bool motorola : {false, true}) {
        SCOPED_TRACE(motorola);
        builder_t builder(motorola);
        builder.text(ifd0, 0x010F, "a").text(ifd0, 0x010F, "Make").rational(exif, 0x829A, 1, 250).thumbnail({5, 6, 7});
        builder.longs(ifd0, 0x0112, {0x10002}).shorts(ifd0, 0x0112, {3}).raw(ifd0, 0x0110, 2, 0xFFFFFFFF, 8);
        builder.raw(ifd0, 0x0131, 14, 99, 99).raw(exif, 0x829D, 12, 9, 9999).srational(exif, 0x9204, -2, 6);
        builder.longs(exif, 0x8831, {102400}).shorts(exif, 0x8833, {1}).longs(exif, 0x9209, {1});
        parsed_t read(builder.app1());
        ASSERT_TRUE(read.good && read.message.empty());
        EXPECT_TRUE(motorola ? read->is_motorola() : read->is_intel());
        EXPECT_EQ(read->tag_0th_ifd.make, "Make\0"s) << "the last one";
        EXPECT_EQ(read->tag_0th_ifd.model.size(), read->size() - 8) << "cut at the end";
        EXPECT_EQ(blob_t(read->thumbnail.begin(), read->thumbnail.end()), (blob_t{5, 6, 7}));
        const ExifType::shorts_t pieces = motorola ? ExifType::shorts_t{1, 2, 3} : ExifType::shorts_t{2, 1, 3};
        EXPECT_EQ(read->tag_0th_ifd.orientation, pieces) << "cut in the width of the field, and appended";
        const ExifType::tag_exif_ifd& tags = read->tag_exif_ifd;
        EXPECT_EQ(tags.exposure_time.at(0).denominator, 250U);
        EXPECT_EQ(tags.exposure_bias_value.at(0).numerator, -2);
        EXPECT_EQ(tags.standard_output_sensitivity, ExifType::longs_t{102400});
        EXPECT_TRUE(tags.f_number.empty() && tags.iso_speed.empty() && tags.flash.empty()) << "of another size";
        read.app1.clear();
        EXPECT_TRUE(tags.exposure_time.empty() && read->thumbnail.empty() && !read->byteorder);
    }
    builder_t greedy;
    for (int i = 0; i < 5000; ++i) {
        greedy.raw(ifd0, 0x0112, 3, 0xFFFFFFFF, 8);
    }
    EXPECT_LE(parsed_t(greedy.app1())->tag_0th_ifd.orientation.size(), 130000U) << "all entries share one value";
}

TEST(Exif, ReadsOrSaysWhatItRefuses) {
    const auto tiff = [](const std::string& text) { return "Exif\0\0"s + blob_t(text.begin(), text.end()); };
    const auto entry = [](builder_t::ifd_t ifd, uint16_t tag, uint16_t type, uint32_t count, uint32_t value) {
        return builder_t().raw(ifd, tag, type, count, value).app1();
    };
    const auto flash = entry(exif, 0x9209, 3, 1, 1);
    const auto old = [](uint32_t at) { return builder_t().shorts(ifd0, 0x1015, {2, 4, 9}).directory(ifd0, at); };
    const auto om = [](uint32_t header, uint32_t focus_info) {  // both sub-directories are one
        const auto main = builder_t().longs(ifd0, 0x2020, {header + 30}).longs(ifd0, 0x2050, {focus_info});
        const auto shared = builder_t().shorts(ifd0, 0x0301, {77}).shorts(ifd0, 0x0500, {18, 0, 0});
        const blob_t bytes = main.directory(ifd0, header);
        return std::string(bytes.begin(), bytes.end()) + shared.directory(ifd0, header + 30);
    };
    const auto pentax = builder_t().shorts(ifd0, 0x0D, {0x110}).raw(ifd0, 0x10, 3, 9, 99).directory(ifd0, 10);
    const auto olymp = "OLYMP\0\1\0"s;
    const auto over_10 = "olympus ifd: 1: size 14 over than ifd.size(10\n";
    const auto no_focus = "olympus3 focusinfo ifd: 0: size 2 over than ifd.size(0\n";
    const auto behind_note = "pentax5 ifd: [16]: 99, 18: app1 size: 40 over.\n";
    const auto om_system = "OM SYSTEM\0\0\0II\4\0"s;
    const struct {
        const char* name;
        blob_t body;
        bool good;
        std::string message;
        ExifType::shorts_t values{};  // of maker notes
    } cases[] = {
        {"no NUL", "Exifx" + blob_t(), false, ""},
        {"7 bytes", tiff("II\x2A\0\0\0\0"s), false, "too few tiff header size.\n"},
        {"mark", tiff("IM\x2A\0\x08\0\0\0"s), false, "byteorder mark not recognized.\n"},
        {"version", tiff("II\0\x2A\x08\0\0\0"s), false, "not tiff(0x00, 0x2a).\n"},
        {"IFD0 outside", tiff("II\x2A\0\x08\0\0\0\0"s), false, "value over, offset 8 tiff size: 9\n"},
        {"IFD1 outside", tiff("II\x2A\0\x08\0\0\0\0\0\xFF\0\0\0"s), true, ""},
        {"entry cut off", cut(entry(ifd0, 1, 3, 1, 1), 27), true, "value over, offset: 2 ifd size: 13\n"},
        {"IFD0 value", entry(ifd0, 1, 2, 5, 26), true, "value over, offset 26 tiff size: 26\n"},
        {"Exif IFD outside", entry(ifd0, 0x8769, 4, 1, 26), false, "exif_ifd_offset size exceed: 26 > 26\n"},
        {"Exif IFD cut off", cut(flash, 6 + 41), false, "exif ifd size exceed: 26 > 41\n"},
        {"GPS IFD outside", entry(ifd0, 0x8825, 4, 1, 26), false, "gps_ifd size exceed: 26 > 26\n"},
        {"no 4 bytes after it", cut(flash, 6 + 43), true, "too few ifd area18 > 17\n"},
        {"Exif value", entry(exif, 1, 2, 9, 42), true, "offset+size over: 42, 9, tiff size: 48\n"},
        {"4 billion", entry(exif, 1, 5, 0xFFFFFFFF, 8), true, "offset+size over: 8, 34359738360, tiff size: 48\n"},
        {"OLYMP", with_note("Olympus", olymp, old(72)), true, "", {2, 4, 9}},
        {"ends past the data", with_note("OLYMPUS", olymp, cut(old(72), 6)), false, over_10},
        {"OLYMP cut off", with_note("OLYMPUS", olymp, cut(old(72), 5)), false, ""},
        {"OLYMP without entries", with_note("OLYMPUS", olymp, blob_t(20)), false, ""},
        {"Olympus without header", with_note("OLYMPUS", "", old(64)), true, "", {2, 4, 9}},
        {"the same cut off", with_note("OLYMPUS", "", cut(old(64), 10)), false, over_10},
        {"OLYMPUS II in MM", with_note("OLYMPUS", "OLYMPUS\0II\3\0"s, om(12, 42), true), true, "", {77, 18, 0, 0}},
        {"OM SYSTEM", with_note("OM Digital Solutions", om_system, om(16, 46)), true, "", {77, 18, 0, 0}},
        {"bad focus info", with_note("OM Digital Solutions", om_system, om(16, 999)), true, no_focus, {18, 0, 0}},
        {"other header", with_note("OM Digital Solutions", "OM-SYSTEM\0\0\0II\4\0"s, om(16, 46)), true, ""},
        {"other make", with_note("PENTAX", "PENTAX \0II"s, pentax), true, ""},
        {"PENTAX", with_note("RICOH", "PENTAX \0II"s, pentax), true, behind_note, {0x110}},
        {"PENTAX cut off", with_note("RICOH", "PENTAX \0II"s, cut(pentax, 25)), false, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const parsed_t read(c.body);
        EXPECT_EQ(read.message, c.message);
        EXPECT_EQ(read.good, c.good);
        EXPECT_EQ(find_maker(read.app1.tiff_header) == &newer_olympus_maker, c.name == "OLYMPUS II in MM"s);
        ExifType::shorts_t values;
        for (const auto* field :
             {&read->tag_olympus_ifd.white_balance, &read->tag_olympus3_focusinfo_ifd.focus_step_count,
              &read->tag_olympus3_camerasettings_ifd.white_balance2, &read->tag_pentax5_ifd.focus_mode}) {
            values.insert(values.end(), field->begin(), field->end());
        }
        EXPECT_EQ(values, c.values);
    }
}

}  // namespace
