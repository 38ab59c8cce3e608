#include "shooting_data/photo_header.h"

#include <gtest/gtest.h>

#include "libgr/image/pixel_operations.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

using namespace taloram;
using namespace test_support;
using builder_t = exif_builder_t;

namespace {

TEST(PhotoHeader, TellsWhatThePhotographSays) {
    const auto oriented = [](uint16_t value) { return builder_t().shorts(builder_t::ifd0, 0x0112, {value}); };
    const blob_t thumbnail = make_jpeg({.width = 16, .height = 16});
    const blob_t broken = oriented(6).thumbnail(thumbnail).longs(builder_t::ifd0, 0x8769, {UINT32_MAX}).app1();
    struct case_t {
        const char* name;
        std::vector<segment_t> segments;
        std::optional<uint16_t> value;
        bool has_thumbnail;
    };
    const case_t cases[] = {
        {"nothing", {}, {}, false},
        {"a camera's", {{0xE0, {1}}, {0xE1, oriented(8).thumbnail(thumbnail).app1()}}, 8, true},
        {"a value that EXIF does not know", {{0xE1, oriented(9).app1()}}, 9, false},
        {"no orientation", {{0xE1, builder_t().thumbnail(thumbnail).app1()}}, {}, true},
        {"the second segment", {{0xE1, {'x'}}, {0xE1, oriented(3).app1()}}, {}, false},
        {"broken later", {{0xE1, broken}}, 6, false},
    };
    const temp_dir_t dir;
    for (const case_t& c : cases) {
        SCOPED_TRACE(c.name);
        write_file(dir / "p.jpg", make_jpeg({.width = 33, .height = 17, .segments = c.segments}));
        photo_header_t header;
        ASSERT_TRUE(load_photo_header(header, dir / "p.jpg"));
        EXPECT_EQ(std::pair(header.width, header.height), std::pair(uint64_t{33}, uint64_t{17}));
        EXPECT_EQ(header.segments.size(), std::max<size_t>(c.segments.size(), 1));
        EXPECT_EQ(stderr_of([&] { read_exif(header); }).empty(),
                  c.segments.empty() || c.segments.back().body != broken);
        write_file(dir / "p.jpg", std::string("replaced"));
        EXPECT_EQ(header.orientation_value, c.value);
        EXPECT_EQ(blob_t(header.thumbnail.begin(), header.thumbnail.end()), c.has_thumbnail ? thumbnail : blob_t());
    }
    photo_header_t header;
    EXPECT_EQ(stderr_of([&] { EXPECT_FALSE(load_photo_header(header, dir / "none")); }), "");
    EXPECT_NE(stderr_of([&] { EXPECT_FALSE(load_photo_header(header, dir / "p.jpg")); }), "");
}

TEST(Orientation, TurnsAsTheEngineDoes) {
    for (unsigned long value = 0; value <= 10; ++value) {
        const orientation_t orientation = to_orientation(value);
        EXPECT_EQ(quarter_turns(orientation), libgr::mixorientandrightrotatecount(0, value)) << value;
        EXPECT_EQ(swaps_sides(orientation), value >= 5 && value <= 8) << value;
        EXPECT_EQ(is_mirrored(orientation), value == 2 || value == 4 || value == 5 || value == 7) << value;
    }
}

}  // namespace
