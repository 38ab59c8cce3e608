#include "shooting_data/exif_summary.h"

#include <gtest/gtest.h>

#include <fstream>

#include "talolib/option.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

using builder_t = test_support::exif_builder_t;

namespace {

constexpr auto exif = builder_t::exif;

// The summary of a photograph with the given tags; for a page it is written twice into one stream.
std::string summary_of(const builder_t& tags, bool html = false) {
    const test_support::temp_dir_t dir;
    test_support::write_file(dir / "a.jpg", make_jpeg(test_support::photo_t{.segments = {{0xE1, tags.app1()}}}));
    std::ostringstream text;
    EXPECT_FALSE(taloram::writeexif(text, dir.path(), ".", "none.jpg", html));
    EXPECT_TRUE(taloram::writeexif(text, "", dir.path(), "a.jpg", html));
    EXPECT_TRUE(!html || taloram::writeexif(text, dir.path(), ".", "a.jpg", html));
    return text.str();
}

TEST(ExifSummary, WritesItems) {
    const auto time = [](uint32_t n, uint32_t d) { return builder_t().rational(exif, 0x829A, n, d); };
    const auto tag = [](uint16_t number, uint16_t value) { return builder_t().shorts(exif, number, {value}); };
    const auto note = builder_t().shorts(exif, 0x1015, {2}).shorts(exif, 0x100B, {2}).directory(exif, 0);
    const std::pair<builder_t, std::string> cases[] = {
        {time(1, 1).srational(exif, 0x9204, 1, 0).text(builder_t::ifd0, 0x0110, "B\n"), "\t, B\n\t, 1sec\t\t, "},
        {time(30, 10).srational(exif, 0x9204, -2, 6).text(exif, 0xA434, "L"),
         std::string("\tL\0\n\t, 3sec, -1/3 EV\t\t, ", 24)},
        {time(0, 0).rational(exif, 0x829D, 1, 0).rational(exif, 0x920A, 0, 0), "\t\t\t, "},
        {time(10, 13).srational(exif, 0x9204, 6, 3).shorts(exif, 0x9207, {255}), "\t, 0.77sec, [Unk], +2 EV\t\t, "},
        {time(2, 500).srational(exif, 0x9204, 1, -3).shorts(exif, 0x8822, {9}), "\t, 1/250sec, +1/-3 EV\tU\t, "},
        {time(0, 9).srational(exif, 0x9204, INT32_MIN, 1), "\t, 0sec, -2147483648 EV\t\t, "},
        {tag(0x8827, 65535).shorts(exif, 0xA403, {3}).shorts(exif, 0xA40A, {4}).srational(exif, 0x9204, 0, 3),
         "\t\t, iso65535\tUnknown WB, Shp Unknown, "},
        {tag(0x8827, 65535).longs(exif, 0x8831, {102400}).shorts(exif, 0x9209, {0x30}), "\t\t, iso102400\t, "},
        {tag(0x9209, 0x65), "\t\t, Flash, Return Not Detected, No Flash Function, Red-Eye Reduce\t, "},
        {builder_t().text(builder_t::ifd0, 0x010F, "Olympus").bytes(exif, 0x927C, note), "\t\t, U\tPreset , , , "},
    };
    const test_support::grouping_locale_t german;
    for (const auto& [tags, summary] : cases) {
        EXPECT_EQ(summary_of(tags), summary);
    }
    EXPECT_EQ(summary_of(time(10, 13).rational(exif, 0x920A, 73, 10).rational(exif, 0x829D, 28, 10), true),
              "\t<br>f=7.3mm, f/2.8, 0.77sec\t<br>\t<br>, \t<br>f=7mm, f/2.8, 0.77sec\t<br>\t<br>, ");
    talolib::g_option[talolib::option_trace] = 1;
    EXPECT_EQ(test_support::stdout_of([&] { EXPECT_EQ(summary_of(tag(0x9207, 7)), "\t, [OTH]\t\t, "); }),
              "new app1_marker_t complete.\nset_app1_buffer() complete.\napp1->parse() complete.\nmetering mode: 7\n");
    talolib::g_option[talolib::option_trace] = 0;
}

// Keeps a summary on one line.
std::string escaped(const std::string& text) {
    std::string line;
    for (const char c : text) {
        line += c == '\n' ? "\\n" : c == '\t' ? "\\t" : c == '\0' ? "\\0" : std::string(1, c);
    }
    return line;
}

TEST(ExifSummary, AgreesWithRealPhotographs) {
    const std::string photos = test_support::real_photos();
    if (photos.empty()) {
        GTEST_SKIP() << "no photographs";
    }
    std::ifstream table(TALORAM_REAL_SUMMARIES);
    size_t count = 0;
    for (std::string file, summary; std::getline(table, file, '\t') && std::getline(table, summary); ++count) {
        std::ostringstream text;
        const bool is_accepted = taloram::writeexif(text, "", photos, file, false);
        EXPECT_EQ(is_accepted ? escaped(text.str()) : "refused", summary) << file;
    }
    EXPECT_GE(count, 72U);
}

}  // namespace
