#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>

#include "libgr/jpeg/jpeginfo.h"
#include "libgr/jpeg/lossless_turn.h"
#include "libgr/jpeg/whole_picture.h"
#include "tests/libgr/jpeg_in_memory.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

using namespace libgr;
using namespace test_support;

namespace {

auto segments_of(const jpeginfo_t& info) {
    std::vector<std::pair<int, blob_t>> segments;
    for (const auto& marker : info.markers) {
        segments.emplace_back(marker.marker, bytes_of(marker.data));
    }
    return segments;
}

blob_t top_down(const image2d_t& image) {
    blob_t rows;
    for (uint32_t y = image.window.height; y-- > 0;) {
        rows.insert(rows.end(), image.pixel(0, y), image.pixel(0, y) + image.rowbyte());
    }
    return rows;
}

TEST(Jpeg, KeepsSegmentsInFileOrder) {
    std::vector<std::pair<int, blob_t>> wanted = {{0xE1, {1, 2}}, {0xFE, {3}}, {0xEF, {}}, {0xE1, {4}}, {0xE0, {5}}};
    photo_t photo{.width = 33, .height = 17};
    for (const auto& [marker, body] : wanted) {
        photo.segments.push_back({static_cast<uint8_t>(marker), body});
    }
    jpegdata_t data = in_memory(make_jpeg(photo));
    jpeginfo_t info, decoded;
    image2d_t image;
    ASSERT_TRUE(info.analyze_markers(data) && decoded.decompress(image, data, 0, false, {}));
    data.clear();
    EXPECT_EQ(std::pair(info.width, info.height), std::pair(uint64_t{33}, uint64_t{17}));
    EXPECT_EQ(segments_of(info), wanted);
    EXPECT_EQ(bytes_of(info.get_marker(jpeginfo_t::num_APP1)), wanted[0].second) << "the first of two";
    EXPECT_EQ(bytes_of(info.get_marker(jpeginfo_t::num_COM)), wanted[1].second);
    EXPECT_TRUE(info.get_marker(jpeginfo_t::num_APP2).empty() && info.get_marker(jpeginfo_t::num_MAX).empty());
    wanted.erase(wanted.begin() + 2);
    EXPECT_EQ(segments_of(decoded), wanted) << "without the empty one";
    ASSERT_TRUE(decoded.compress(data, image, 90, true) && info.analyze_markers(data));
    info.markers.pop_front();  // libjpeg's own JFIF segment
    EXPECT_EQ(segments_of(info), wanted);
    EXPECT_NEAR(decode(bytes_of(data)).bytes[0], *image.pixel(0, 16), 20) << "the top row is the buffer's last";
}

TEST(Jpeg, KnowsWholePictures) {
    EXPECT_FALSE(is_whole_picture(in_memory({})) || is_whole_picture(in_memory(blob_t(100, 'x'))));
    for (const photo_t& photo :
         {photo_t{}, photo_t{.sampling = sampling_t::gray, .restart_interval = 2}, photo_t{.progressive = true}}) {
        blob_t jpeg = make_jpeg(photo);
        jpeg.insert(jpeg.end(), 5, 0);
        EXPECT_TRUE(is_whole_picture(in_memory(jpeg)));
        jpeg.resize(jpeg.size() - 7);
        EXPECT_EQ(!photo.progressive, is_whole_picture(in_memory(jpeg))) << "an end that nobody has to look for";
        jpeg.resize(jpeg.size() - 20);
        EXPECT_FALSE(is_whole_picture(in_memory(jpeg))) << "cut off";
    }
}

TEST(Jpeg, UnreadableHeadersEnd) {
    const std::pair<blob_t, std::string> cases[] = {
        {{0x89, 'P', 'N', 'G'}, "Not a JPEG file: starts with 0x89 0x50"},
        {{}, "Empty input file"},
        {{0xFF, 0xD8, 0xFF, 0xDB, 0, 67, 0}, "Premature end of input file"},
        {{0xFF, 0xD8, 0xFF, 0xDC, 0xFF, 0xFF, 0}, "Premature end of input file"},
    };
    jpeginfo_t info;
    image2d_t image;
    for (const auto& [bytes, message] : cases) {
        jpegdata_t data = in_memory(bytes);
        const std::string text = "P: error detected.\n" + message + "\nP: jpeg decompress fail, stop.\n";
        EXPECT_EQ(stderr_of([&] { EXPECT_FALSE(info.analyze_markers(data)); }), text);
        EXPECT_EQ(stderr_of([&] { EXPECT_FALSE(info.decompress(image, data, 0, false, {})); }), text);
    }
    const char cmyk[] =
        "\xFF\xD8\xFF\xC0\0\x14\x8\0\x8\0\x8\4\1\x11\0\2\x11\0\3\x11\0\4\x11\0\xFF\xDA\0\xE\4\1\0\2\0\3\0\4\0\0\x3F\0";
    jpegdata_t data = in_memory({std::begin(cmyk), std::end(cmyk)});
    EXPECT_EQ(stderr_of([&] { EXPECT_FALSE(info.decompress(image, data, 0, false, {})); }), "");
}

TEST(Jpeg, DecodesWhatIsThere) {
    const auto given_up = [](const std::string& message) {
        return "P: error detected.\n" + message + "\nP: jpeg decompress fail, but continue.\n";
    };
    const std::string two_starts = given_up("Invalid JPEG file structure: two SOI markers");
    const std::string cut_short = "Corrupt JPEG data: premature end of data segment\nP: decompress fail.\n";
    const blob_t single = make_jpeg({.width = 70, .height = 90, .sampling = sampling_t::s444});
    const blob_t scans = make_jpeg({.width = 17, .height = 9, .sampling = sampling_t::gray, .progressive = true});
    const blob_t sos = {0xFF, 0xDA};
    const auto scan1 = std::search(scans.begin(), scans.end(), sos.begin(), sos.end());
    const auto scan2 = std::search(scan1 + 1, scans.end(), sos.begin(), sos.end());
    blob_t endless(scans.begin(), scans.end() - 2);
    for (int n = 0; n < 500; ++n) {
        endless.insert(endless.end(), std::find_end(scan2, scans.end(), sos.begin(), sos.end()), scans.end() - 2);
    }
    blob_t circle(scans.begin(), scan2);  // its last segment reaches round into the first scan, again and again
    circle.insert(circle.end(), {0xFF, 0xFE, 0, static_cast<unsigned char>(scan1 - scans.begin() + 16)});
    const std::tuple<const char*, blob_t, blob_t, long, std::string> cases[] = {
        {"colour", single, single, 90, ""},
        {"gray, progressive", scans, scans, 9, ""},
        {"cut", single, {single.begin(), single.end() - 1700}, 40, cut_short},
        {"no EOI", single, {single.begin(), single.end() - 2}, 90, two_starts},
        {"cut in a scan", scans, {scans.begin(), scan1 + 14}, 0, cut_short},
        {"cut between scans", scans, {scans.begin(), scan2}, 0, two_starts},
        {"endless", scans, endless, 0,
         "Inconsistent progression sequence for component 0 coefficient 1\n" +
             given_up("JPEG file with more than 500 scans")},
        {"circle", scans, circle, 0,
         "Corrupt JPEG data: 2 extraneous bytes before marker 0xc4\n" + given_up("Premature end of input file")},
    };
    for (const auto& [name, whole, file, right_rows, messages] : cases) {
        SCOPED_TRACE(name);
        jpegdata_t data = in_memory(file);
        jpeginfo_t info;
        image2d_t image;
        EXPECT_EQ(stderr_of([&] { EXPECT_TRUE(info.decompress(image, data, 0, false, {})); }), messages);
        const pixels_t picture = decode(whole);
        EXPECT_EQ(image.desc.format, picture.channels == 1 ? IMAGE_FORMAT_GRAYSCALE : IMAGE_FORMAT_RGB);
        ASSERT_EQ(image.rowbyte() * image.window.height, picture.bytes.size());
        const blob_t found = top_down(image);
        const auto wrong = std::mismatch(found.begin(), found.end(), picture.bytes.begin()).first;
        EXPECT_EQ((wrong - found.begin()) / static_cast<long>(image.rowbyte()), right_rows);
        EXPECT_EQ(found.back() == 0, name == std::string("cut")) << "the bottom row";
    }
}

// Bytes of the compressed data are overwritten; with restart intervals the picture goes on after them.
TEST(Jpeg, DecodesOnAfterADamagedRestartInterval) {
    const blob_t zeros(40), reserved = {0xFF, 0x37, 0x12, 0xFF, 0xBF}, end = {0xFF, 0xD9, 0, 0};
    for (const unsigned interval : {1U, 4U, 10U, 0U}) {  // of 10 MCUs a row
        for (const bool progressive : {false, true}) {
            const blob_t whole =
                make_jpeg({.width = 160, .height = 112, .progressive = progressive, .restart_interval = interval});
            const size_t data = std::string(whole.begin(), whole.end()).find("\xFF\xDA") + 20;
            for (const blob_t& hole : {zeros, reserved, end, {}}) {
                const bool marker_in_hole = hole == reserved || hole == end;
                // libjpeg itself gives up at such a marker when it takes in all coefficients.
                for (size_t eighth = marker_in_hole && progressive ? 8 : 0; eighth < 8; ++eighth) {
                    SCOPED_TRACE(testing::Message() << "interval " << interval << ", progressive " << progressive
                                                    << ", " << hole.size() << " bytes at " << eighth << " eighths");
                    blob_t file = whole;
                    const auto at = file.begin() + static_cast<long>(data + (file.size() - 60 - data) * eighth / 7);
                    std::copy(hole.begin(), hole.end(), at);
                    if (hole == end && eighth % 2 != 0) {
                        file.erase(at, file.end());  // the data is over there, too
                    }
                    jpegdata_t photo = in_memory(file), copy;
                    jpeginfo_t info;
                    image2d_t image;
                    const std::string messages =
                        stderr_of([&] { ASSERT_TRUE(info.decompress(image, photo, 0, false, {})); });
                    EXPECT_EQ(info.damaged, !messages.empty()) << messages;
                    const blob_t found = top_down(image), wanted = decode(file).bytes;
                    const bool over = messages.find("decompress fail") != std::string::npos;
                    EXPECT_TRUE(over || hole != end) << messages;
                    if (!progressive && over) {
                        EXPECT_TRUE(interval == 0 || hole == end || eighth == 7) << "nothing after it";
                        const auto wrong = std::mismatch(found.begin(), found.end(), wanted.begin()).first;
                        EXPECT_TRUE(std::all_of(wrong, found.end(), [](int sample) { return sample == 0; }));
                    } else {
                        EXPECT_EQ(found, wanted);
                    }
                    if (marker_in_hole) {
                        continue;
                    }
                    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(transform(0, copy, photo), messages.empty()); }),
                              messages.substr(0, messages.find('\n') + 1));
                    for (size_t i = 0; i < 3; ++i) {
                        std::vector<int16_t> values = read_coefficients(file).components[i].values;
                        for (size_t k = 0; k < values.size(); ++k) {
                            values[k] = std::clamp<int16_t>(values[k], k % 64 == 0 ? -1024 : -1023, 1023);
                        }
                        EXPECT_EQ(read_coefficients(bytes_of(copy)).components[i].values, values);
                    }
                }
            }
        }
    }
}

TEST(Jpeg, FewBytesMakeLittleWork) {
    const auto resized = [](blob_t file, uint8_t frame, unsigned side, size_t bytes) {
        const blob_t sof = {0xFF, frame};
        const auto at = std::search(file.begin(), file.end(), sof.begin(), sof.end()) + 5;
        at[0] = at[2] = static_cast<unsigned char>(side >> 8);
        at[1] = at[3] = static_cast<unsigned char>(side);
        file.resize(std::max(bytes, file.size()));
        return in_memory(file);
    };
    jpeginfo_t info;
    image2d_t image;
    const blob_t gray = make_jpeg({.sampling = sampling_t::gray});
    jpegdata_t photo = resized(gray, 0xC0, 14100, 65536), header = resized(gray, 0xC0, 14100, 0), turned;
    (void)stderr_of([&] { EXPECT_TRUE(info.decompress(image, photo, 0, false, {})) << "200 megapixels, cut short"; });
    const std::string text = "P: error detected.\nJPEG picture of 14100 x 14100 pixels in too small a file\n";
    EXPECT_EQ(stderr_of([&] { EXPECT_FALSE(info.decompress(image, header, 0, false, {})); }),
              text + "P: jpeg decompress fail, stop.\n");
    EXPECT_EQ(stderr_of([&] { EXPECT_FALSE(transform(1, turned, header)); }), text);
    blob_t file = make_jpeg({.sampling = sampling_t::gray, .progressive = true});
    const blob_t sos = {0xFF, 0xDA};
    const blob_t scan(std::find_end(file.begin(), file.end(), sos.begin(), sos.end()), file.end() - 2);
    for (int n = 0; n < 20; ++n) {
        file.insert(file.end() - 2, scan.begin(), scan.end());
    }
    jpegdata_t scans = resized(file, 0xC2, 8000, 0);
    EXPECT_THAT(stderr_of([&] { EXPECT_FALSE(transform(1, turned, scans)); }),
                testing::ContainsRegex("more than [12][0-9] scans"));
}

TEST(Jpeg, DecodesAtAReducedScale) {
    const blob_t file = make_jpeg({.width = 33, .height = 17});
    jpegdata_t data = in_memory(file);
    for (unsigned eighths = 1; eighths <= 8; ++eighths) {
        SCOPED_TRACE(eighths);
        jpeginfo_t info;
        image2d_t image;
        ASSERT_TRUE(info.decompress_scaled(image, data, eighths));
        EXPECT_EQ(std::pair(info.width, info.height), std::pair(uint64_t{33}, uint64_t{17}));
        EXPECT_EQ(image.window.width, (33 * eighths + 7) / 8);
        EXPECT_EQ(image.window.height, (17 * eighths + 7) / 8);
    }
}

TEST(Jpeg, EncodesOrRefusesBeforehand) {
    const auto encoded = [](e_image_format_t format, uint32_t width, uint32_t height, size_t segment_bytes) {
        image2d_t image;
        image.desc.format = format;
        image.window = {0, 0, 0, width, height};
        EXPECT_TRUE(image.allocate());
        unsigned noise = 1;
        std::generate(image.begin(), image.end(), [&] { return (noise = noise * 1664525 + 1013904223) >> 24; });
        jpeginfo_t info;
        EXPECT_TRUE(info.markers.emplace_back(jpeginfo_t::marker_t{0xFE, {}}).data.resize(segment_bytes));
        jpegdata_t out = in_memory({1, 2, 3});
        EXPECT_TRUE(info.compress(out, image, 101, true) || out.empty());
        const blob_t file = bytes_of(out);
        ++image.window.height;
        EXPECT_FALSE(info.compress(out, image, 101, true)) << "a row is missing";
        return file;
    };
    const blob_t large = encoded(IMAGE_FORMAT_RGB, 1001, 700, 65533);
    EXPECT_EQ(decode(large).height, 700U);
    EXPECT_EQ(large.back(), 0xD9) << "bytes past the end";
    EXPECT_EQ(decode(encoded(IMAGE_FORMAT_YCbCr, 9, 1, 0)).width, 9U);
    EXPECT_EQ(decode(encoded(IMAGE_FORMAT_GRAYSCALE, 65500, 1, 0)).width, 65500U);
    EXPECT_EQ(encoded(IMAGE_FORMAT_GRAYSCALE, 65501, 1, 0), blob_t());
    EXPECT_EQ(encoded(IMAGE_FORMAT_RGB, 1, 1, 65534), blob_t());
    EXPECT_EQ(encoded(IMAGE_FORMAT_RGBA, 4, 4, 0), blob_t());
    EXPECT_EQ(encoded(IMAGE_FORMAT_RGB, 0, 4, 0), blob_t());
    EXPECT_EQ(encoded(IMAGE_FORMAT_RGB, 4, 0, 0), blob_t());
}

TEST(Jpeg, AFileThatBecomesShorterIsNoPicture) {
    const temp_dir_t dir;
    const std::string path = dir / "p.jpg";
    const std::string copy = dir / "copy.jpg";
    const blob_t whole = make_jpeg({.width = 600, .height = 400});
    for (const size_t size : {size_t{1}, whole.size() / 2, whole.size() - 1}) {
        SCOPED_TRACE(size);
        write_file(path, whole);
        jpegdata_t data, turned;
        ASSERT_TRUE(data.load(path.c_str()));
        std::filesystem::resize_file(path, size);
        jpeginfo_t info;
        image2d_t image;
        EXPECT_FALSE(info.analyze_markers(data));
        EXPECT_FALSE(info.decompress(image, data, 0, false, {}));
        EXPECT_FALSE(transform(1, turned, data));
        EXPECT_FALSE(data.save(copy.c_str()) || std::filesystem::exists(copy));
    }
}

TEST(Jpeg, SavingReplacesTheFileOrRewritesIt) {
    const temp_dir_t dir;
    const std::string path = dir / "a.jpg";
    const std::string other_name = dir / "b.jpg";
    write_file(path, std::string("original"));
    ASSERT_EQ(link(path.c_str(), other_name.c_str()), 0);
    jpegdata_t data;
    jpegdata2_t in_place;
    ASSERT_TRUE(data.load(path.c_str()) && in_place.load(other_name.c_str()));
    data.offset = 3;
    in_place.limit = 4;
    ASSERT_TRUE(data.save(path.c_str()) && in_place.save(other_name.c_str())) << "each out of its own file";
    EXPECT_EQ(read_file(path), (blob_t{'g', 'i', 'n', 'a', 'l'}));
    EXPECT_EQ(read_file(other_name), (blob_t{'o', 'r', 'i', 'g'}));
    EXPECT_FALSE(in_place.save("/dev/full"));
}

}  // namespace
