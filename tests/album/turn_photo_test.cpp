#include "album/turn/turn_photo.h"

#include <map>

#include "album/album_update.h"
#include "album/sizes/reduced_sizes.h"
#include "album/turn/pending_turn.h"
#include "album/turn/planned_turn.h"
#include "tests/album/album_fixture.h"

struct turn_photo_test : album_test_t {
    using tree_t = std::map<std::string, blob_t>;

    void import(const blob_t& photo, const std::string& name = "p.jpg") {
        fs::create_directories(album + "/txt");
        put(album + "/original/" + name, photo);
        EXPECT_TRUE(shrink(album, {{name}}, silent));
    }
    turned_t turn(unsigned long count, const std::vector<std::string>& names = {"p.jpg"}) {
        progress_signals_t signals{{}, {}, progress, {}, {}, {}};
        return turn_photos(album, names, count, signals);
    }
    // Sizes and thumbnails, and whatever lies beside the album's directories.
    tree_t tree() const {
        tree_t files;
        for (const std::string& path : files_below(album)) {
            const std::string name = path.substr(album.size() + 1);
            if (name.rfind("size", 0) == 0 || name.rfind("thumb", 0) == 0 || name[0] == '.') {
                files[name] = read_file(path);
            }
        }
        return files;
    }
    blob_t turned(const blob_t& jpeg, unsigned long count) const {
        write_file(dir / "x.jpg", jpeg);
        EXPECT_TRUE(rotatejpeg(dir / "x.jpg", dir / "x.jpg", count));
        return read_file(dir / "x.jpg");
    }
    tree_t turned(tree_t files, unsigned long count, unsigned long thumb_count) const {
        for (auto& [name, bytes] : files) {
            bytes = turned(bytes, name.rfind("thumb", 0) == 0 ? thumb_count : count);
        }
        return files;
    }
    // What a program leaves that is killed when it has made, and perhaps committed, the turned files of p.jpg.
    void leave_turn(unsigned long count, bool committed) {
        const tree_t files = turned(tree(), count, count);
        {
            pending_turn_t pending(album);
            ASSERT_FALSE(pending.begin({"p.jpg"}));
            for (const auto& [name, bytes] : files) {
                write_file(pending.path(name.substr(0, name.find('/')), "p.jpg"), bytes);
            }
            ASSERT_FALSE(committed && pending.commit(count));
        }
        if (!committed) {
            put(album + "/.taloram-turning-1-1/size0/p.jpg", std::string("half"));
        }
    }
    const blob_t plain = make_jpeg({.width = 200, .height = 150});
};

TEST_F(turn_photo_test, turns_what_is_seen) {
    const struct {
        const char* name;
        unsigned orientation;
        bool with_thumbnail;
        unsigned long turns, thumb_turns;
    } cases[] = {
        {"as the camera was held", 1, true, 1, 1},
        {"no EXIF", 0, false, 1, 1},
        {"upright by its segments", 6, true, 2, 1},
        {"the thumbnail made from the picture", 6, false, 2, 2},
        {"cancels", 8, true, 0, 1},
        {"upside down", 3, false, 3, 3},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        fs::remove_all(album);
        import(make_camera_jpeg({.width = 200, .height = 150}, c.orientation, c.with_thumbnail));
        import(plain, "other.jpg");
        const tree_t before = tree();
        tree_t expected = turned(before, c.turns, c.thumb_turns);
        for (auto& [name, bytes] : expected) {
            bytes = name.find("/p.jpg") == std::string::npos ? before.at(name) : bytes;
        }
        steps.clear();
        EXPECT_EQ(turned_t::all, turn(1));
        EXPECT_EQ(expected, tree());
        EXPECT_EQ(std::vector<double>{1}, steps);
        EXPECT_TRUE(fs::exists(album + "/index.html"));
        EXPECT_EQ(turned_t::all, turn(3));
        EXPECT_EQ(turned_t::all, turn(1));
        EXPECT_EQ(expected, tree()) << "a turn of turned ones";
    }
}

TEST_F(turn_photo_test, all_or_nothing) {
    import(plain);
    import(make_camera_jpeg({.width = 200, .height = 150}, 2, true), "mirrored.jpg");
    const tree_t before = tree();
    const std::string size1 = album + "/size1/p.jpg";
    const auto refusal = [&](const std::vector<std::string>& names) {
        return outcome([&] { return turn(1, names) == turned_t::all; });
    };
    EXPECT_EQ("false\n" + album + "/size0/mirrored.jpg: is mirrored, nothing was turned.\n",
              refusal({"p.jpg", "mirrored.jpg"}));
    EXPECT_EQ(before, tree());
    {
        const file_size_limit_t limit(before.at("size0/p.jpg").size() - 1000);
        EXPECT_EQ("false\n" + album + "/size0/p.jpg: its turned file can't be written, File too large\n" + album +
                      "/size0/p.jpg: can't be turned, nothing was turned.\n",
                  refusal({"p.jpg"}));
    }
    EXPECT_EQ(before, tree());
    fs::remove(size1);
    EXPECT_EQ("false\n" + size1 + ": can't be read, nothing was turned.\n", refusal({"p.jpg"}));
    put(size1, before.at("size1/p.jpg"));
    EXPECT_EQ(before, tree());
    EXPECT_FALSE(fs::exists(album + "/index.html"));
}

TEST_F(turn_photo_test, makes_a_broken_thumbnail_anew) {
    import(plain);
    const tree_t expected = turned(tree(), 1, 1);
    const auto shape = [&] { return decode(read_file(album + "/thumb/p.jpg")).width; };
    for (const bool cut : {true, false}) {
        const tree_t before = tree();
        const blob_t& thumb = before.at("thumb/p.jpg");
        put(album + "/thumb/p.jpg", blob_t(thumb.begin(), thumb.begin() + (cut ? 700 : 0)));
        EXPECT_EQ(turned_t::all, turn(1));
        EXPECT_EQ(cut ? expected.at("size1/p.jpg") : turned(before.at("size1/p.jpg"), 1), tree().at("size1/p.jpg"));
        EXPECT_EQ(cut ? 9U : 12U, shape());
    }
}

TEST_F(turn_photo_test, ends_what_a_killed_program_began) {
    import(plain);
    const tree_t start = tree(), once = turned(start, 1, 1);
    const struct {
        const char* name;
        bool committed;
        std::function<bool()> next;
        tree_t wanted;
    } cases[] = {
        {"the same again", true, [&] { return turn(1) == turned_t::all; }, once},
        {"the same again, too early", false, [&] { return turn(1) == turned_t::all; }, once},
        {"turned back", true, [&] { return turn(3) == turned_t::all; }, turned(once, 3, 3)},
        {"an update", true, [&] { return updatealbum({{"p.jpg"}}, album, silent, silent, silent, silent); }, once},
        {"an update, too early", false, [&] { return updatealbum({{"p.jpg"}}, album, silent, silent, silent, silent); },
         start},
        {"a look", true, [&] { return end_begun_turns(album); }, once},
    };
    for (const auto& c : cases) {
        for (const bool half_placed : {false, true}) {
            SCOPED_TRACE(c.name);
            fs::remove_all(album);
            import(plain);
            leave_turn(1, c.committed);
            for (const auto& entry : fs::directory_iterator(album)) {
                if (half_placed && c.committed && entry.path().filename().string()[0] == '.') {
                    fs::rename(entry.path() / "size0/p.jpg", album + "/size0/p.jpg");
                }
            }
            EXPECT_TRUE(c.next());
            EXPECT_EQ(c.wanted, tree());
            EXPECT_TRUE(fs::exists(album + "/index.html"));
        }
    }
}

TEST_F(turn_photo_test, places_what_an_album_still_has_and_on_other_disks) {
    import(plain);
    const tree_t once = turned(tree(), 1, 1);
    const fs::path other = "/dev/shm/" + fs::path(dir.path()).filename().string();
    std::error_code absent;
    if (fs::create_directory(other, absent)) {
        fs::copy(album + "/size0", other, fs::copy_options::recursive);
        fs::remove_all(album + "/size0");
        fs::create_directory_symlink(other, album + "/size0");
    }
    EXPECT_EQ(turned_t::all, turn(1));
    EXPECT_EQ(once.at("size0/p.jpg"), read_file(album + "/size0/p.jpg"));
    fs::remove_all(other);

    fs::remove_all(album);
    import(plain);
    leave_turn(1, true);
    fs::remove(album + "/original/p.jpg");
    fs::remove_all(album + "/size0");
    EXPECT_TRUE(end_begun_turns(album));
    EXPECT_FALSE(fs::exists(album + "/size0/p.jpg"));
    for (const auto& [name, bytes] : tree()) {
        EXPECT_NE('.', name[0]) << name;
    }
}

TEST_F(turn_photo_test, tells_what_an_update_will_turn) {
    g_global.shrink_width = 256;
    g_global.shrink_height = 192;
    const auto thumb = [&] { return read_file(album + "/thumb/p.jpg"); };
    for (const auto& [orientation, with_thumbnail] : {std::pair(0U, true), {0U, false}, {6U, true}, {6U, false}}) {
        for (const unsigned long before : {0UL, 1UL, 3UL}) {
            SCOPED_TRACE(testing::Message() << orientation << ' ' << with_thumbnail << ' ' << before);
            fs::remove_all(album);
            import(make_camera_jpeg({.width = 512, .height = 384}, orientation, with_thumbnail));
            EXPECT_EQ(turned_t::all, before == 0 ? turned_t::all : turn(before));
            EXPECT_EQ(0U, planned_turn(album, "p.jpg", 0));
            const pixels_t planned = decode(turned(thumb(), planned_turn(album, "p.jpg", 1)));
            EXPECT_TRUE(shrinkupdate({{"p.jpg", 1}}, album, silent));
            const pixels_t found = decode(thumb());
            ASSERT_EQ(planned.width, found.width);
            unsigned long difference = 0;
            for (size_t i = 0; i < found.bytes.size(); ++i) {
                difference += static_cast<unsigned long>(std::abs(planned.bytes[i] - found.bytes[i]));
            }
            EXPECT_LT(difference / found.bytes.size(), 8U);
        }
    }
}
