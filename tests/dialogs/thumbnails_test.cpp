#include "widgets/thumbnails.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>

#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

namespace {

using namespace taloram;
using namespace test_support;

photo_t sized(unsigned width, unsigned height, sampling_t sampling = sampling_t::s420) {
    photo_t photo;
    photo.width = width;
    photo.height = height;
    photo.sampling = sampling;
    return photo;
}

TEST(Thumbnails, preview_of_a_photograph) {
    struct case_t {
        const char* name;
        blob_t jpeg;
        unsigned width, height;
    };
    exif_builder_t broken_thumbnail;
    broken_thumbnail.thumbnail(blob_t(200, 0x20));
    photo_t with_broken_one = sized(300, 200);
    with_broken_one.segments = {{0xE1, broken_thumbnail.app1()}};
    const case_t cases[] = {
        {"no EXIF: halved into 256 x 192", make_jpeg(sized(2000, 1500)), 250, 187},
        {"fits exactly", make_jpeg(sized(256, 192)), 256, 192},
        {"one too high", make_jpeg(sized(256, 193)), 128, 96},
        {"gray", make_jpeg(sized(300, 200, sampling_t::gray)), 150, 100},
        {"embedded", make_camera_jpeg(sized(640, 480), 1, true), 160, 120},
        {"embedded, quarter turn", make_camera_jpeg(sized(640, 480), 6, true), 120, 160},
        {"embedded, mirrored: not turned", make_camera_jpeg(sized(640, 480), 5, true), 160, 120},
        {"embedded, but no picture", make_jpeg(with_broken_one), 150, 100},
        {"whole pictures are not turned", make_camera_jpeg(sized(256, 160), 6, false), 256, 160},
    };
    const temp_dir_t dir;
    for (const case_t& c : cases) {
        SCOPED_TRACE(c.name);
        write_file(dir / "P.JPG", c.jpeg);
        libgr::image2d_t image;
        ASSERT_TRUE(load_thumbnail(image, dir / "P.JPG"));
        EXPECT_EQ(c.width, image.window.width);
        EXPECT_EQ(c.height, image.window.height);
    }
}

TEST(Thumbnails, refusals_say_why) {
    const temp_dir_t dir;
    write_file(dir / "junk.jpg", std::string("junk"));
    write_file(dir / "good.jpeg", make_jpeg(sized(64, 48)));
    const std::pair<const char*, const char*> cases[] = {
        // name; last line on standard error behind the path
        {"good.jpeg", nullptr},
        {"missing.mov", nullptr},
        {"missing.JPG", ": jpegdata load() failed.\n"},
        {"junk.jpg", ": jpeginfo analyze_markers() failed.\n"},
    };
    for (const auto& [name, line] : cases) {
        SCOPED_TRACE(name);
        libgr::image2d_t image;
        const std::string err = stderr_of([&, path = dir / name] { EXPECT_FALSE(load_thumbnail(image, path)); });
        EXPECT_TRUE(line == nullptr ? err.empty() : err.ends_with((dir / name) + line)) << err;
    }
}

TEST(Thumbnails, albums_own_pictures_come_first) {
    const temp_dir_t album;
    const std::array<const char*, 3> places = {"thumb", "size0", "original"};
    for (size_t i = 0; i < places.size(); ++i) {
        mkdir((album / places[i]).c_str(), 0755);
        write_file(album / places[i] + "/P.JPG", make_jpeg(sized(16 + 8 * static_cast<unsigned>(i), 16)));
    }
    for (size_t i = 0; i < places.size(); ++i) {
        SCOPED_TRACE(places[i]);
        libgr::image2d_t image;
        ASSERT_TRUE(load_exifthumbnail_or_thumbdir(image, album.path(), "P.JPG"));
        EXPECT_EQ(16 + 8 * i, image.window.width);
        remove((album / places[i] + "/P.JPG").c_str());
    }
}

TEST(Thumbnails, pixels_stand_the_right_way_up) {
    const temp_dir_t dir;
    for (const sampling_t sampling : {sampling_t::s444, sampling_t::gray}) {
        const blob_t jpeg = make_jpeg(sized(13, 7, sampling));
        write_file(dir / "P.jpg", jpeg);
        const pixels_t expected = decode(jpeg);
        libgr::image2d_t image;
        ASSERT_TRUE(load_jpeg(image, dir / "P.jpg"));
        const auto shown = convert_to_pixbuf(image);
        ASSERT_TRUE(shown && shown->get_width() == 13 && shown->get_height() == 7);
        for (unsigned i = 0; i < 13 * 7 * 3; ++i) {
            const unsigned pixel = i / 3;
            const auto at = static_cast<unsigned>(shown->get_rowstride()) * (pixel / 13) + pixel % 13 * 3 + i % 3;
            const unsigned from = expected.channels == 1 ? pixel : i;
            ASSERT_EQ(expected.bytes[from], shown->get_pixels()[at]) << "sample " << i;
        }
    }
    EXPECT_FALSE(convert_to_pixbuf(libgr::image2d_t()));
}

}  // namespace
