#include <gtest/gtest.h>

#include <hwy/targets.h>

#include <random>

#include "libgr/pyramid/reduced_level.h"
#include "tests/libgr/jpeg_in_memory.h"

using namespace libgr;
using namespace test_support;

namespace {

// Runs the test for every kind of vectors that this processor has.
template <typename Test>
void on_every_target(Test test) {
    for (const int64_t target : hwy::SupportedAndGeneratedTargets()) {
        SCOPED_TRACE(hwy::TargetName(target));
        hwy::SetSupportedTargetsForTest(target);
        test();
    }
    hwy::SetSupportedTargetsForTest(0);
}

// Samples of one kind: anything, or only the darkest and the brightest.
blob_t random_samples(size_t count, bool extreme, unsigned seed) {
    std::mt19937 random(seed);
    blob_t samples(count);
    std::generate(samples.begin(), samples.end(), [&] {
        const auto sample = static_cast<unsigned char>(random());
        return extreme ? static_cast<unsigned char>(sample < 128 ? 0 : 255) : sample;
    });
    return samples;
}

struct level_case_t {
    unsigned width;
    unsigned height;
    unsigned components;
    int quality;
    bool extreme;
};

blob_t encode_level(const level_case_t& c, bool by_libjpeg) {
    const jpegdata_t nothing;
    decompressor_t reader(nothing);
    encoder_batch_t batch(c.components);
    jpegdata_t out;
    reduced_level_t level;
    EXPECT_TRUE(level.prepare(c.width, c.height, c.components, nullptr));
    if (by_libjpeg) {
        level.encode_by_libjpeg(out, reader);
    } else {
        const encoder_tables_t* const tables = encoder_tables_t::make(c.quality, c.components);
        level.encode_into(out, batch, *tables);
    }
    const blob_t samples = random_samples(size_t{c.width} * c.height * c.components, c.extreme, c.width);
    bool complete = false;
    EXPECT_TRUE(reader.attempt([&] {
        level.start(c.quality, nullptr);
        const unsigned char* from = samples.data();
        for (unsigned y = 0; y < c.height; ++y) {
            for (unsigned i = 0; i < c.components; ++i, from += c.width) {
                std::copy_n(from, c.width, level.row_to_fill()[i]);
            }
            level.take_row();
        }
        complete = level.finish();
    }));
    EXPECT_TRUE(complete);
    return bytes_of(out);
}

void expect_as_libjpeg(const level_case_t& c) {
    SCOPED_TRACE(testing::Message() << c.width << " x " << c.height << ", " << c.components << " components, quality "
                                    << c.quality << ", extreme " << c.extreme);
    EXPECT_EQ(encode_level(c, false), encode_level(c, true));
}

TEST(Encoder, WritesLibjpegsBytesAtEveryQuality) {
    for (int quality = 0; quality <= 101; ++quality) {
        for (const unsigned components : {1U, 3U}) {
            for (const bool extreme : {false, true}) {
                expect_as_libjpeg({97, 39, components, quality, extreme});
            }
        }
    }
}

TEST(Encoder, WritesLibjpegsBytesForEverySize) {
    on_every_target([] {
        for (unsigned side = 1; side <= 40; ++side) {
            for (const unsigned components : {1U, 3U}) {
                expect_as_libjpeg({side, 41 - side, components, 100, true});
                expect_as_libjpeg({side + 120, side, components, 75, false});
            }
        }
    });
}

TEST(Encoder, DividesAsThePlainLoop) {
    on_every_target([] {
        for (unsigned factor = 1; factor <= 255; ++factor) {
            std::array<uint16_t, block_size> table;
            table.fill(static_cast<uint16_t>(factor));
            const quantiser_t quantiser(table.data());
            const blob_t samples = random_samples(block_side * group_columns, factor % 2 == 0, factor);
            const unsigned char* rows[block_side];
            for (size_t y = 0; y < block_side; ++y) {
                rows[y] = &samples[y * group_columns];
            }
            coded_group_t vectors;
            coded_group_t plain;
            forward_dct(&vectors, 1, rows, 0, quantiser);
            forward_dct_plain(plain, rows, 0, quantiser);
            EXPECT_EQ(vectors.bits, plain.bits) << factor;
            EXPECT_EQ(vectors.sizes, plain.sizes) << factor;
            EXPECT_EQ(vectors.present, plain.present) << factor;
        }
    });
}

}  // namespace
