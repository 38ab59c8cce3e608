#include "viewer/load_picture.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>

#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

namespace {

using namespace talovue;
using namespace test_support;

TEST(LoadPicture, DecodesNoMoreThanIsSeen) {
    struct case_t {
        const char* name;
        blob_t file;
        int box;  // both sides
        double zoom;
        int width, height;
    };
    const blob_t photo = make_jpeg({.width = 640, .height = 480});
    const case_t cases[] = {
        {"fitted exactly", photo, 333, 0, 333, 250},
        {"not enlarged", photo, 1000, 0, 640, 480},
        {"two eighths", photo, 100, 0.25, 160, 120},
        {"three eighths for a little more", photo, 100, 0.26, 240, 180},
        {"whole", photo, 100, 1, 640, 480},
        {"a line", make_jpeg({.width = 640, .height = 1}), 100, 0, 100, 1},
        {"on its side", make_camera_jpeg({.width = 640, .height = 480}, 6, false), 320, 0, 240, 320},
        {"gray, mirrored on its side",
         make_camera_jpeg({.width = 640, .height = 480, .sampling = sampling_t::gray}, 5, false), 100, 0.5, 240, 320},
    };
    const temp_dir_t dir;
    for (const case_t& c : cases) {
        SCOPED_TRACE(c.name);
        write_file(dir / "p.jpg", c.file);
        const loaded_picture_t picture = load_picture({{dir / "p.jpg"}, c.box, c.box, c.zoom});
        EXPECT_EQ("", picture.failure);
        ASSERT_EQ(std::pair(c.width, c.height), std::pair(picture.pixels.width, picture.pixels.height));
        const pixels_t whole = decode(c.file);
        EXPECT_EQ(double(whole.width) * whole.height, picture.width * picture.height);
        // Where the picture stands upright in the file, its right lower corner's red.
        const uint32_t corner = picture.pixels.rows[static_cast<size_t>(c.width * c.height - 1)];
        EXPECT_TRUE(c.width < c.height || std::abs(int(corner >> 16 & 0xFF) - *(whole.bytes.end() - 3)) < 40);
    }
}

TEST(LoadPicture, TakesTheSizeOfAnAlbumThatSuits) {
    const temp_dir_t album;
    const std::pair<const char*, photo_t> sizes[] = {{"size0", {.width = 640, .height = 480}},
                                                     {"size1", {.width = 320, .height = 240}},
                                                     {"size2", {.width = 160, .height = 120}}};
    for (const auto& [name, photo] : sizes) {
        std::filesystem::create_directory(album / name);
        write_file(album / name + "/p.jpg", make_jpeg(photo));
    }
    struct case_t {
        const char* removed;  // before the case
        int box;
        double zoom;
        int width, shown_width;  // of the full size, of the pixels
    };
    const case_t cases[] = {
        {"none", 100, 0, 640, 100},     {"none", 320, 0, 640, 320},   {"none", 1000, 0, 640, 640},
        {"none", 100, 0.25, 640, 160},  {"none", 100, 0.3, 640, 200}, {"none", 100, 0.6, 640, 400},
        {"size2", 100, 0.25, 640, 160}, {"size0", 100, 1, 320, 320},  {"size0", 100, 0, 320, 100},
    };
    const picture_t picture{album / "original/p.jpg", album.path()};
    for (const case_t& c : cases) {
        SCOPED_TRACE(testing::Message() << c.removed << " " << c.box << " " << c.zoom);
        std::filesystem::remove(album / c.removed + "/p.jpg");
        const loaded_picture_t loaded = load_picture({picture, c.box, c.box, c.zoom});
        EXPECT_EQ("", loaded.failure);
        EXPECT_EQ(std::pair(c.shown_width, double(c.width)), std::pair(loaded.pixels.width, loaded.width));
    }
    std::filesystem::remove_all(album / "size1");
    EXPECT_EQ("No such file or directory", load_picture({picture, 9, 9}).failure);
}

TEST(LoadPicture, TellsWhyNot) {
    const temp_dir_t dir;
    const blob_t file = make_jpeg({.width = 640, .height = 480});
    write_file(dir / "junk", std::string("junk"));
    write_file(dir / "empty", std::string());
    write_file(dir / "head", blob_t(file.begin(), file.begin() + 100));
    write_file(dir / "half", blob_t(file.begin(), file.begin() + static_cast<long>(file.size() / 2)));
    mkfifo((dir / "pipe").c_str(), 0644);
    const char* const broken = "This is not a JPEG photograph, or it is damaged.";
    const std::pair<const char*, const char*> cases[] = {
        {"gone", "No such file or directory"},
        {"junk", broken},
        {"empty", broken},
        {"head", broken},
        {"pipe", broken},
        {".", broken},
        {"half", ""},
    };
    for (const auto& [name, reason] : cases) {
        SCOPED_TRACE(name);
        loaded_picture_t picture;
        static_cast<void>(stderr_of([&, path = dir / name] { picture = load_picture({{path}, 100, 100}); }));
        EXPECT_EQ(reason, picture.failure);
        EXPECT_EQ(picture.failure.empty(), picture.pixels.rows != nullptr);
        EXPECT_EQ(picture.failure.empty(), picture.damaged);
    }
}

}  // namespace
