#include "libgr/pyramid/reduction.h"

#include <gtest/gtest.h>

#include <hwy/targets.h>

#include "libgr/image/pixel_operations.h"
#include "libgr/jpeg/jpeginfo.h"
#include "tests/libgr/jpeg_in_memory.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

using namespace libgr;
using namespace test_support;

namespace {

// Every level that has pixels, one picture after the other.
std::vector<blob_t> plain_levels(jpegdata_t& data, int quality) {
    std::vector<blob_t> levels;
    jpeginfo_t info;
    image2d_t image;
    if (!info.decompress(image, data, 0, false, {})) {
        return levels;
    }
    while (std::min(image.window.width, image.window.height) > 1) {
        EXPECT_TRUE(scaledown(image, image));
        jpegdata_t level;
        EXPECT_TRUE(info.compress(level, image, quality, true));
        levels.push_back(bytes_of(level));
        info.markers.clear();  // the first alone carries them
    }
    return levels;
}

// Makes the levels that `wanted` has a bit for. What the plain way has nothing to say about comes out the same; what it
// complains of is left to it. True when libjpeg had to decode the photograph.
bool expect_as_plain(jpegdata_t& data, int quality, unsigned wanted) {
    std::vector<blob_t> plain;
    const std::string messages = stderr_of([&] { plain = plain_levels(data, quality); });
    reduction_t reduction;
    reduction.quality = quality;
    reduction.levels.resize(std::min<size_t>(plain.size(), 16));
    bool covered = false;
    for (size_t i = 0; i < reduction.levels.size(); ++i) {
        reduction.levels[i].wanted = (wanted >> i & 1) != 0;
        reduction.levels[i].with_segments = i == 0;
        covered = covered || (reduction.levels[i].wanted && messages.empty());
    }
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(reduce(reduction, data), covered) << messages; }), "");
    for (size_t i = 0; covered && i < reduction.levels.size(); ++i) {
        if (reduction.levels[i].wanted) {
            EXPECT_EQ(bytes_of(reduction.levels[i].stream), plain[i]) << "level " << i + 1;
        }
    }
    return reduction.by_libjpeg;
}

bool expect_as_plain(const blob_t& file, int quality, unsigned wanted) {
    jpegdata_t data = in_memory(file);
    return expect_as_plain(data, quality, wanted);
}

// What cameras write.
bool is_common(sampling_t sampling) {
    return sampling != sampling_t::s440 && sampling != sampling_t::s411;
}

constexpr unsigned every_level = ~0U;
constexpr sampling_t samplings[] = {sampling_t::s444, sampling_t::s422, sampling_t::s440,
                                    sampling_t::s420, sampling_t::s411, sampling_t::gray};

TEST(Reduction, IsThePlainOneForEverySize) {
    constexpr unsigned sides[] = {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 23, 31, 32, 33, 34, 39, 40};
    for (const unsigned width : sides) {
        for (const unsigned height : sides) {
            for (const sampling_t sampling : samplings) {
                SCOPED_TRACE(testing::Message() << width << " x " << height << ", sampling " << int(sampling));
                expect_as_plain(make_jpeg({.width = width, .height = height, .sampling = sampling}), 100, every_level);
            }
        }
    }
}

TEST(Reduction, IsThePlainOneForEveryKindOfFile) {
    const std::pair<const char*, photo_t> cases[] = {
        {"wide", {.width = 1023, .height = 66}},
        {"high", {.width = 66, .height = 1023, .sampling = sampling_t::s422}},
        {"progressive", {.width = 333, .height = 222, .progressive = true}},
        {"restarts", {.width = 334, .height = 223, .restart_interval = 3}},
        {"restarts everywhere", {.width = 130, .height = 71, .restart_interval = 1}},
        {"one restart", {.width = 600, .height = 400, .restart_interval = 250}},
        {"coarse", {.width = 335, .height = 224, .quality = 3}},
        {"segments", {.width = 336, .height = 225, .segments = {{0xE1, {1, 2}}, {0xEE, {}}, {0xFE, blob_t(65533)}}}},
    };
    for (const auto& [name, photo] : cases) {
        for (const sampling_t sampling : samplings) {
            photo_t other = photo;
            other.sampling = sampling;
            SCOPED_TRACE(testing::Message() << name << ", sampling " << int(sampling));
            EXPECT_EQ(expect_as_plain(make_jpeg(other), 100, every_level), photo.progressive || !is_common(sampling));
            expect_as_plain(make_jpeg(other), 30, 0b10110);
        }
    }
}

TEST(Reduction, LeavesDamagedFilesAlone) {
    for (const bool progressive : {false, true}) {
        const blob_t whole = make_jpeg({.width = 200, .height = 150, .progressive = progressive});
        for (const size_t size : {whole.size() - 2, whole.size() / 2, size_t{700}, size_t{20}, size_t{0}}) {
            SCOPED_TRACE(testing::Message() << size << " bytes, progressive " << progressive);
            expect_as_plain(blob_t(whole.begin(), whole.begin() + static_cast<long>(size)), 90, every_level);
        }
        blob_t scribbled = whole;
        std::fill_n(scribbled.begin() + static_cast<long>(whole.size()) / 2, 9, 0xFF);
        expect_as_plain(scribbled, 90, every_level);
    }
}

TEST(Reduction, IsThePlainOneForRealPhotographs) {
    for (const std::string& path : files_below(real_photos())) {
        SCOPED_TRACE(path);
        jpegdata_t data;
        ASSERT_TRUE(data.load(path.c_str()));
        const bool by_libjpeg = expect_as_plain(data, 100, every_level);
        constexpr unsigned char progressive[] = {0xFF, 0xC2};
        const auto frame = std::search(data.begin(), data.end(), std::begin(progressive), std::end(progressive));
        EXPECT_TRUE(path.find("/cameras/") == path.npos || !by_libjpeg || frame != data.end());
    }
}

TEST(Reduction, IsTheSameForEveryQuality) {
    for (int quality = 1; quality <= 100; ++quality) {
        SCOPED_TRACE(quality);
        const photo_t photo{.width = 75, .height = 50, .quality = quality};
        EXPECT_FALSE(expect_as_plain(make_jpeg(photo), quality, every_level));
    }
}

TEST(Reduction, LeavesAllCodingToLibjpegWhenAsked) {
    ASSERT_EQ(setenv("TALORAM_CODING", "libjpeg", 1), 0);
    EXPECT_TRUE(expect_as_plain(make_jpeg({.width = 75, .height = 50}), 100, every_level));
    ASSERT_EQ(unsetenv("TALORAM_CODING"), 0);
}

TEST(Reduction, IsTheSameWithEveryKindOfVectors) {
    for (const int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        for (const sampling_t sampling : samplings) {
            SCOPED_TRACE(testing::Message() << hwy::TargetName(target) << ", sampling " << int(sampling));
            expect_as_plain(make_jpeg({.width = 411, .height = 93, .sampling = sampling}), 100, every_level);
            expect_as_plain(make_jpeg({.width = 97, .height = 40, .sampling = sampling, .quality = 98}), 1,
                            every_level);
        }
    }
    hwy::SetSupportedTargetsForTest(0);
}

}  // namespace
