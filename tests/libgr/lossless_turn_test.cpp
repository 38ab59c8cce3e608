#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "libgr/jpeg/coefficient_turn.h"
#include "libgr/jpeg/lossless_turn.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

using namespace libgr;
using namespace test_support;

namespace {

blob_t turned(unsigned long count, const blob_t& file, bool good = true) {
    jpegdata_t data;
    EXPECT_TRUE(data.resize(file.size()));
    std::copy(file.begin(), file.end(), data.begin());
    EXPECT_EQ(transform(count, data, data), good) << "into the source itself";
    return {data.begin(), data.end()};
}

TEST(LosslessTurn, MovesEveryPixelByTheRules) {
    // Only whole iMCUs are mirrored; their size stands in the table.
    const auto mirrored = [](unsigned i, unsigned whole) { return i < whole ? whole - 1 - i : i; };
    using s = sampling_t;
    const std::tuple<const char*, s, unsigned, unsigned> cases[] = {
        {"4:4:4", s::s444, 8, 8},   {"4:2:2", s::s422, 16, 8}, {"4:4:0", s::s440, 8, 16},
        {"4:2:0", s::s420, 16, 16}, {"4:1:1", s::s411, 32, 8}, {"gray", s::gray, 8, 8}};
    for (const auto& [name, sampling, imcu_width, imcu_height] : cases) {
        for (const auto& [width, height] : {std::pair(64U, 96U), {75U, 53U}, {7U, 5U}, {17U, 16U}}) {
            blob_t file = make_jpeg({.width = width, .height = height, .sampling = sampling});
            if (sampling == s::gray) {
                // Sampling factors mean nothing to one component.
                file[std::string(file.begin(), file.end()).find("\xFF\xC0") + 11] = 0x22;
            }
            const pixels_t from = decode(file);
            const unsigned w = width / imcu_width * imcu_width;
            const unsigned h = height / imcu_height * imcu_height;
            for (unsigned long count = 0; count < 4; ++count) {
                SCOPED_TRACE(testing::Message() << name << " " << width << "x" << height << " by " << count);
                const pixels_t to = decode(turned(count, file));
                ASSERT_EQ(to.width, count % 2 == 0 ? width : height);
                for (unsigned i = 0; i < to.bytes.size(); ++i) {
                    const unsigned x = i / to.channels % to.width;
                    const unsigned y = i / to.channels / to.width;
                    const unsigned from_x = count == 0 ? x : count == 1 ? y : mirrored(count == 2 ? x : y, w);
                    const unsigned from_y = count == 0 ? y : count == 3 ? x : mirrored(count == 1 ? x : y, h);
                    // Chroma is interpolated across the odd strip's border, and rounding depends on the direction.
                    const bool border = from_x == 0 || from_x == w || from_x + 1 == w ||  //
                                        from_y == 0 || from_y == h || from_y + 1 == h;
                    const unsigned from_i = (from_y * width + from_x) * to.channels + i % to.channels;
                    ASSERT_TRUE(border || std::abs(to.bytes[i] - from.bytes[from_i]) <= 3) << x << "," << y;
                }
            }
            if (width == w && height == h) {
                EXPECT_EQ(turned(1, turned(1, turned(1, turned(1, file)))), turned(0, file)) << name;
            }
            EXPECT_EQ(turned(2, turned(2, file)), turned(0, file)) << name;
            EXPECT_EQ(read_coefficients(turned(0, file)).components[0].values,
                      read_coefficients(file).components[0].values);
        }
    }
}

TEST(LosslessTurn, RealFilesTurnedTwiceAreTheSame) {
    for (const std::string name : {"odd-227x149.jpg", "restart-33x33.jpg"}) {
        const blob_t file = real_photos().empty() ? make_jpeg({}) : read_file(real_photos() + "/shapes/" + name);
        EXPECT_EQ(turned(2, turned(2, file)), turned(0, file)) << name;
    }
}

TEST(LosslessTurn, ReadsCropRequests) {
    struct case_t {
        const char* text;
        crop_request_t request;
    };
    const case_t good[] = {{"30x20", {30, 20, 0, 0, false, false}},
                           {"30X20+4-5", {30, 20, 4, 5, false, true}},
                           {"30-4+5", {30, 0, 4, 5, true, false}},
                           {"x20", {0, 20, 0, 0, false, false}},
                           {"+0+0", {}}};
    for (const case_t& c : good) {
        SCOPED_TRACE(c.text);
        jpeg_transform_info info;
        ASSERT_TRUE(jtransform_parse_crop_spec(info, c.text));
        const crop_request_t& read = info.crop_request;
        EXPECT_EQ(std::tie(read.width, read.height, read.x_offset, read.y_offset, read.from_right, read.from_bottom),
                  std::tie(c.request.width, c.request.height, c.request.x_offset, c.request.y_offset,
                           c.request.from_right, c.request.from_bottom));
    }
    for (const char* text : {"", "x", "0x20", "30x0", "30x", "30x20+4", "30x20+4+", "30x20+4+5x", "a", "30 x20",
                             "99999999999999999999x1"}) {
        jpeg_transform_info info;
        EXPECT_FALSE(jtransform_parse_crop_spec(info, text) || info.crop) << text;
    }
}

TEST(LosslessTurn, RefusesAndLeavesSegmentsBehind) {
    const blob_t camera = make_camera_jpeg({}, 6, true);
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(turned(4, camera, false), camera); }),
              "4: jpeg transform rightrotate count over.\n");
    const blob_t cut(camera.begin(), camera.end() - 2);
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(turned(1, cut, false), cut); }),
              ": error detected.\nInvalid JPEG file structure: two SOI markers\n");
    const blob_t right = turned(1, camera);
    EXPECT_EQ(std::string(right.begin(), right.end()).find("Exif"), std::string::npos);
    // A first scan that leaves the lowest ten bits of its DC values to later ones makes them impossibly large.
    blob_t hostile = make_jpeg({.progressive = true});
    hostile[std::string(hostile.begin(), hostile.end()).find("\xFF\xDA") + 13] = 0x0A;
    EXPECT_NE(stderr_of([&] { hostile = turned(3, hostile, false); }), "");
    for (const auto& component : read_coefficients(hostile).components) {
        EXPECT_THAT(component.values, testing::Each(testing::AllOf(testing::Ge(-1024), testing::Le(1023))));
    }
}

}  // namespace
