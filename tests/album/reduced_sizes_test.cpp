#include "album/sizes/reduced_sizes.h"

#include <chrono>

#include "album/turn/turn_photo.h"
#include "libgr/image/pixel_operations.h"
#include "tests/album/album_fixture.h"

struct reduced_sizes_test : album_test_t {
    std::string output(const std::string& directory) const { return album + "/" + directory + "/p.jpg"; }
    std::string run(bool update, uint64_t count) {
        const std::vector<files_t> files{{"a.mov", 0}, {"p.jpg", count}};
        return outcome([&] { return update ? shrinkupdate(files, album, progress) : shrink(album, files, progress); });
    }
    static blob_t saved(const libgr::image2d_t& image, std::list<libgr::jpeginfo_t::marker_t> markers) {
        libgr::jpegdata_t data;
        libgr::jpeginfo_t info;
        info.markers = std::move(markers);
        EXPECT_TRUE(info.compress(data, image, 75, true));
        return {data.begin(), data.end()};
    }
    blob_t turned(const blob_t& jpeg, unsigned long count) const {
        write_file(dir / "x.jpg", jpeg);
        EXPECT_TRUE(rotatejpeg(dir / "x.jpg", dir / "x.jpg", count));
        return read_file(dir / "x.jpg");
    }
    const std::string original = output("original");
};

TEST_F(reduced_sizes_test, top_level_by_the_header) {
    const std::array<unsigned, 5> cases[] = {
        {6000, 4000, 1024, 768, 3}, {4000, 3000, 1024, 768, 2}, {1025, 768, 1024, 768, 1}, {1024, 768, 1024, 768, 0},
        {1024, 769, 1024, 768, 1},  {3, 3, 1024, 768, 0},       {3, 3, 0, 0, 2},           {65500, 1, 0, 0, 16}};
    blob_t jpeg = make_jpeg({});
    const blob_t sof{0xFF, 0xC0};
    const auto frame = std::search(jpeg.begin(), jpeg.end(), sof.begin(), sof.end());
    for (const auto& [width, height, shrink_width, shrink_height, level] : cases) {
        const unsigned fields[] = {height >> 8, height & 255, width >> 8, width & 255};
        std::copy(std::begin(fields), std::end(fields), frame + 5);
        put(original, jpeg);
        g_global.shrink_width = shrink_width;
        g_global.shrink_height = shrink_height;
        EXPECT_EQ(level, getshrinklevel(album, "p.jpg")) << width << "x" << height;
    }
}

TEST_F(reduced_sizes_test, levels_thumbnail_and_turns) {
    const struct {
        const char* name;
        photo_t photo;
        unsigned orientation, count, level, turns, updated_turns;
    } cases[] = {
        {"fits exactly", {.width = 64, .height = 48}, 0, 0, 0, 0, 0},
        {"one too wide", {.width = 65, .height = 48}, 0, 0, 1, 0, 0},
        {"odd, no EXIF", {.width = 133, .height = 97, .sampling = sampling_t::s444}, 0, 1, 2, 1, 1},
        {"gray, unturned", {.width = 201, .height = 20, .sampling = sampling_t::gray}, 6, 0, 2, 1, 1},
        {"both turns", {.width = 128, .height = 96}, 6, 1, 1, 2, 1},
        {"turns that cancel", {.width = 128, .height = 96}, 8, 1, 1, 0, 3},
        {"EXIF broken after IFD0", {.width = 128, .height = 96, .seed = 9}, 6, 1, 1, 2, 1},
        {"camera's thumbnail cut off", {.width = 128, .height = 96, .seed = 8}, 6, 1, 1, 2, 1},
    };
    g_global.jpeg_compress = 75;
    const blob_t camera_thumb = make_jpeg({.width = 32, .height = 24, .seed = 2});
    for (auto c : cases) {
        SCOPED_TRACE(c.name);
        fs::remove_all(album);
        const bool broken = c.photo.seed == 9, cut_off = c.photo.seed == 8;
        const blob_t embedded(camera_thumb.begin(), camera_thumb.end() - (cut_off ? 40 : 0));
        exif_builder_t exif;
        exif.shorts(exif_builder_t::ifd0, 0x0112, {static_cast<uint16_t>(c.orientation)}).thumbnail(embedded);
        exif.longs(exif_builder_t::ifd0, 0x8825, {broken ? 0xFFFFFFU : 0});  // where the GPS directory lies
        if (c.orientation != 0) {
            c.photo.segments = {{0xE1, exif.app1()}};
        }
        put(original, make_jpeg(c.photo));
        for (const bool again : {false, true}) {
            EXPECT_EQ("true", run(again, c.count).substr(0, 4)) << "again: " << again;
            const unsigned turns = again && c.count != 0 ? c.updated_turns : c.turns;
            const std::string expected = dir / "expected.jpg";
            put(expected, c.count == 0 ? read_file(original) : turned(read_file(original), turns));
            libgr::jpegdata_t data;
            libgr::jpeginfo_t info;
            libgr::image2d_t image;
            ASSERT_TRUE(data.load(expected.c_str()) && info.decompress(image, data, 0, false, {}));
            EXPECT_EQ(again && c.count != 0 ? saved(image, info.markers) : read_file(expected),
                      read_file(output("size0")));
            info.markers.resize(c.count == 0 || again ? info.markers.size() : 0);
            for (unsigned k = 1; k <= c.level; ++k) {
                EXPECT_TRUE(libgr::scaledown(image, image));
                EXPECT_EQ(saved(image, info.markers), read_file(output(level_name(k)))) << k << ", again: " << again;
            }
            EXPECT_TRUE(libgr::scaledown(image, image) && libgr::scaledown(image, image));
            const blob_t upright = turns == 0 ? camera_thumb : turned(camera_thumb, turns);
            EXPECT_EQ(c.orientation == 0 || broken || cut_off ? saved(image, {}) : upright, read_file(output("thumb")));
        }
        EXPECT_FALSE(fs::exists(output(level_name(c.level + 1))));
    }
}

TEST_F(reduced_sizes_test, update_redoes_what_is_missing) {
    using namespace std::chrono_literals;
    const std::tuple<std::string, std::chrono::nanoseconds, std::string> cases[] = {
        {"size3", 1ns, ""},
        {"thumb", 0ns, "thumb"},
        {"size1", 0ns, "size1 thumb"},
        {"size1", 1ns, "size1 size2 thumb"},
        {"size0", 0ns, ""},
        {"size0", 24h, "size1 size2 thumb"}};
    const auto past = fs::file_time_type::clock::now() - 1h;
    put(original, make_jpeg({.width = 200, .height = 150}));
    EXPECT_EQ("true\n", run(false, 0));
    fs::copy(album, dir / "made", fs::copy_options::recursive);
    for (const auto& [missing, newer, redone] : cases) {
        for (const std::string name : {"size0", "size1", "size2", "thumb"}) {
            put(output(name), name == "size0" ? text_of(original) : "old");
            fs::last_write_time(output(name), past);
        }
        fs::remove(output(missing));
        fs::last_write_time(original, past + newer);
        EXPECT_EQ("true\n", run(true, 0));
        EXPECT_TRUE(missing == "size0" || newer != 0ns || fs::last_write_time(output("size0")) == past) << missing;
        for (const std::string name : {"size0", "size1", "size2", "thumb"}) {
            const bool made = name == "size0" || redone.find(name) != std::string::npos;
            EXPECT_EQ(made ? text_of(dir / ("made/" + name + "/p.jpg")) : "old", text_of(output(name))) << missing;
        }
    }
}

TEST_F(reduced_sizes_test, failures) {
    const std::string size1 = output("size1"), thumb = output("thumb");
    put(original, make_jpeg({.width = 3, .height = 3}));
    EXPECT_EQ("false\n" + thumb + ": svjinfo compress() failed.\n" + thumb + ": savejpeg failed.\n", run(false, 0));
    EXPECT_EQ("false\n4: jpeg transform rightrotate count over.\n" + original +
                  ": transform() failed.\np.jpg: rotatejpeg() failed.\n",
              run(false, 4));
    put(original, make_jpeg({.width = 70}));
    put(album + "/size1", "in the way");
    EXPECT_EQ("false\n" + size1 + "svjdata save() failed.\n" + size1 + ": savejpeg failed.\n", run(false, 0));
    const blob_t level0 = read_file(output("size0"));
    EXPECT_EQ("false\n" + size1 + ": jpegdata load() failed.\n" + size1 + ": rotate jpeg failed.\n",
              outcome([&] { return rotateallsize(album, "p.jpg", 1); }));
    EXPECT_EQ(turned(level0, 1), read_file(output("size0")));
}
