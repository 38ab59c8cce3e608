#include <gtest/gtest.h>

#include <hwy/targets.h>

#include <random>

#include "libgr/pyramid/baseline_decoder.h"
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

// Coefficients in zigzag order of which `count` are not 0, the DC coefficient and others up to `largest`.
std::vector<int16_t> random_coefficients(size_t blocks, size_t count, int largest, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<int16_t> values(blocks * block_size);
    for (size_t i = 0; i < values.size(); ++i) {
        const int range = i % block_size == 0 ? 1000 : largest;
        if (i % block_size < count) {
            values[i] =
                static_cast<int16_t>(static_cast<int>(random() % (2U * static_cast<unsigned>(range) + 1)) - range);
        }
    }
    return values;
}

constexpr unsigned row_of_blocks = 24;

// A picture of one row of blocks.
blob_t with_coefficients(const std::vector<int16_t>& values, unsigned factor) {
    jpegdata_t out;
    compressor_t writer(out);
    std::array<unsigned, block_size> table;
    table.fill(factor);
    EXPECT_TRUE(writer.attempt([&] {
        writer.create();
        jpeg_compress_struct& info = writer.info;
        const auto common = reinterpret_cast<j_common_ptr>(&info);
        info.image_width = row_of_blocks * DCTSIZE;
        info.image_height = DCTSIZE;
        info.input_components = 1;
        info.in_color_space = JCS_GRAYSCALE;
        jpeg_set_defaults(&info);
        jpeg_add_quant_table(&info, 0, table.data(), 100, FALSE);
        jvirt_barray_ptr array = info.mem->request_virt_barray(common, JPOOL_IMAGE, TRUE, row_of_blocks, 1, 1);
        jpeg_write_coefficients(&info, &array);
        JBLOCK* const blocks = info.mem->access_virt_barray(common, array, 0, 1, TRUE)[0];
        for (size_t i = 0; i < row_of_blocks * block_size; ++i) {
            blocks[i / block_size][zigzag_to_array[i % block_size]] = values[i];
        }
        jpeg_finish_compress(&info);
    }));
    return bytes_of(out);
}

// Its rows, one after the other; nothing when they are left to libjpeg.
blob_t decode_row(const blob_t& file, bool by_libjpeg) {
    const jpegdata_t data = in_memory(file);
    decompressor_t reader(data);
    blob_t samples(row_of_blocks * block_size);
    JSAMPROW rows[DCTSIZE];
    for (size_t y = 0; y < block_side; ++y) {
        rows[y] = &samples[y * row_of_blocks * block_side];
    }
    JSAMPARRAY planes[] = {rows};
    const auto decoder = std::make_unique<baseline_decoder_t>();
    bool read = false;
    EXPECT_TRUE(reader.attempt([&] {
        reader.open();
        if (by_libjpeg) {
            reader.info.raw_data_out = TRUE;
            jpeg_start_decompress(&reader.info);
            read = jpeg_read_raw_data(&reader.info, planes, DCTSIZE) != 0;
        } else {
            read = decoder->start(reader.info) && decoder->read_rows(planes);
        }
    }));
    return read ? samples : blob_t();
}

TEST(Decoder, MakesLibjpegsSamplesOrNone) {
    const struct {
        const char* name;
        size_t count;
        int largest;
        unsigned factor;
        bool sound;
    } cases[] = {
        {"DC alone", 1, 0, 1, true},      {"few", 6, 300, 1, true},         {"all", 64, 20, 1, true},
        {"large", 64, 60, 1, true},       {"coarse", 10, 1, 90, false},     {"limit", 64, 200, 1, false},
        {"too large", 3, 1023, 9, false}, {"absurd", 64, 1023, 1, false},   {"wrapped", 64, 1023, 255, false},
        {"flat", 1, 0, 255, false},       {"one row", 2, 1023, 100, false},
    };
    for (const auto& c : cases) {
        for (unsigned seed = 0; seed < 200; ++seed) {
            SCOPED_TRACE(testing::Message() << c.name << ", seed " << seed);
            const blob_t file =
                with_coefficients(random_coefficients(row_of_blocks, c.count, c.largest, seed), c.factor);
            const blob_t samples = decode_row(file, false);
            EXPECT_TRUE(!c.sound || !samples.empty());
            EXPECT_TRUE(samples.empty() || samples == decode_row(file, true));
        }
    }
}

TEST(Decoder, TransformsAsThePlainLoop) {
    constexpr std::pair<size_t, int> kinds[] = {{1, 0}, {3, 40}, {20, 200}, {64, 30}, {64, 90}, {64, 2047}, {0, 0}};
    on_every_target([&] {
        for (unsigned seed = 0; seed < 300; ++seed) {
            const auto [count, largest] = kinds[seed % std::size(kinds)];
            const auto values = random_coefficients(group_blocks, count, largest, seed);
            std::array<uint16_t, block_size> table;
            table.fill(static_cast<uint16_t>(seed % 2 == 0 ? 1 : 1 + seed * 37 % 255));
            coefficient_group_t group{};
            for (size_t i = 0; i < values.size(); ++i) {
                group.values[group_index[i % block_size] + i / block_size * block_side] = values[i];
                group.last =
                    static_cast<uint8_t>(values[i] == 0 ? group.last : std::max<size_t>(group.last, i % block_size));
            }
            std::array<blob_t, 2> samples;
            std::array<bool, 2> sound{};
            for (const bool plain : {false, true}) {
                samples[plain].resize(group_size);
                unsigned char* rows[block_side];
                for (size_t y = 0; y < block_side; ++y) {
                    rows[y] = &samples[plain][y * group_columns];
                }
                sound[plain] = plain ? inverse_dct_plain(rows, 0, group, table.data())
                                     : inverse_dct(rows, 0, &group, 1, table.data());
            }
            EXPECT_EQ(sound[0], sound[1]) << seed;
            EXPECT_TRUE(!sound[0] || samples[0] == samples[1]) << seed;
        }
    });
}

}  // namespace
