#include <gtest/gtest.h>

#include <sstream>

#include "libgr/image/pixel_conversions.h"
#include "libgr/image/pixel_operations.h"
#include "tests/support/fixtures.h"

using namespace libgr;

namespace {

// A picture whose components are its byte numbers, row by row from the bottom.
image2d_t numbered(e_image_format_t format, uint32_t width, uint32_t height) {
    image2d_t image;
    image.desc.format = format;
    image.window.width = width;
    image.window.height = height;
    EXPECT_TRUE(image.allocate());
    for (uint32_t y = 0; y < height; ++y) {
        for (uint64_t i = 0; i < image.rowbyte(); ++i) {
            image.pixel(0, y)[i] = static_cast<unsigned char>(3 * i + 7 * y * image.rowbyte());
        }
    }
    return image;
}

TEST(Image, RowsAreAligned) {
    image2d_t image = numbered(IMAGE_FORMAT_RGB, 5, 1);
    EXPECT_EQ(image.rowbyte(), 15U);
    EXPECT_EQ(image.rowsize(), 16U);
    const image_store_t store{32};
    image.store = &store;
    EXPECT_EQ(image.rowsize(), 32U);
    image.window = {0, 0, 1, 0xFFFFFFFF, 0xFFFFFFFF};
    EXPECT_FALSE(image.allocate()) << "four exabytes";
    EXPECT_EQ((image_desc_t{IMAGE_FORMAT_RGB, IMAGE_TYPE_UINT, IMAGE_BITS_R5G6B5}.getPixelBits()), 16U);
    EXPECT_EQ((image_desc_t{IMAGE_FORMAT_YCbCrA, IMAGE_TYPE_UINT, IMAGE_BITS_16}.getPixelBits()), 64U);
}

TEST(Image, ScaledownAveragesRoundingDown) {
    for (const auto format :
         {IMAGE_FORMAT_GRAYSCALE, IMAGE_FORMAT_RGB, IMAGE_FORMAT_BGR, IMAGE_FORMAT_RGBA, IMAGE_FORMAT_BGRA}) {
        for (const auto& [width, height] : {std::pair{6U, 4U}, {5U, 3U}, {33U, 17U}, {2U, 2U}, {1U, 9U}, {0U, 0U}}) {
            SCOPED_TRACE(testing::Message() << format << " " << width << "x" << height);
            const image2d_t source = numbered(format, width, height);
            const uint32_t n = source.desc.getPixelBits() / 8;
            image2d_t half;
            ASSERT_TRUE(scaledown(half, source));
            ASSERT_EQ(half.window.width, width / 2);
            ASSERT_EQ(half.window.height, height / 2);
            for (uint32_t y = 0; y < height / 2; ++y) {
                for (uint32_t i = 0; i < width / 2 * n; ++i) {
                    const uint32_t x = i / n * 2;
                    const uint32_t c = i % n;
                    const int sum = source.pixel(x, 2 * y)[c] + source.pixel(x + 1, 2 * y)[c] +
                                    source.pixel(x, 2 * y + 1)[c] + source.pixel(x + 1, 2 * y + 1)[c];
                    ASSERT_EQ(half.pixel(0, y)[i], sum / 4) << i << "," << y;
                }
            }
            image2d_t same = source;
            ASSERT_TRUE(scaledown(same, same));
            EXPECT_TRUE(std::equal(half.begin(), half.end(), same.begin(), same.end()));
        }
    }
    image2d_t ycc = numbered(IMAGE_FORMAT_YCbCr, 4, 4);
    EXPECT_EQ(test_support::stderr_of([&] { EXPECT_FALSE(scaledown(ycc, ycc)); }),
              "scaledown(): IMAGE_FORMAT_YCbCr: unsupported format.\n");
    image2d_t hollow;
    hollow.window = {0, 0, 0, 100, 100};
    EXPECT_EQ(test_support::stderr_of([&] { EXPECT_FALSE(scaledown(hollow, hollow)); }),
              "scaledown(): allocate() fail.\n");
}

TEST(Image, RotateTurnsClockwise) {
    const image2d_t source = numbered(IMAGE_FORMAT_RGB, 3, 2);
    image2d_t turned;
    ASSERT_TRUE(rotate(1, turned, source));
    EXPECT_EQ(turned.window.width, 2U);
    EXPECT_EQ(turned.pixel(0, 2)[1], source.pixel(0, 0)[1]) << "the top left is the source's bottom left";
    EXPECT_EQ(turned.pixel(1, 2)[1], source.pixel(0, 1)[1]);
    ASSERT_TRUE(rotate(1, turned, turned));
    image2d_t half_turn;
    ASSERT_TRUE(rotate(2, half_turn, source));
    EXPECT_TRUE(std::equal(turned.begin(), turned.end(), half_turn.begin(), half_turn.end()));
    ASSERT_TRUE(rotate(3, turned, turned));
    ASSERT_TRUE(rotate(3, turned, turned));
    EXPECT_TRUE(std::equal(turned.begin(), turned.end(), source.begin(), source.end()));
    EXPECT_FALSE(rotate(4, turned, source));
    ASSERT_TRUE(rotate(0, turned, source));
    EXPECT_EQ(turned.begin(), source.begin());
}

TEST(Image, OrientationsAndConversions) {
    EXPECT_EQ(mixorientandrightrotatecount(0, 8), 3U);
    EXPECT_EQ(mixorientandrightrotatecount(3, 6), 0U);
    EXPECT_EQ(mixorientandrightrotatecount(3, 3), 1U);
    EXPECT_EQ(mixorientandrightrotatecount(7, 100), 7U);
    image2d_t image = numbered(IMAGE_FORMAT_BGR, 3, 3);
    const image2d_t source = image;
    ASSERT_TRUE(bgr2rgb(image, image) && rgb2rgba(image, image));
    EXPECT_EQ(image.pixel(2, 1)[0], source.pixel(2, 1)[2]);
    EXPECT_EQ(image.pixel(2, 1)[3], 255);
    EXPECT_FALSE(index2rgb(image, image));
    std::ostringstream names;
    names << IMAGE_FORMAT_YCbCr422 << IMAGE_BITS_D24S8 << IMAGE_TYPE_MAX;
    EXPECT_EQ(names.str(), "IMAGE_FORMAT_YCbCr422IMAGE_BITS_D24S8unknown: 3");
}

}  // namespace
