#include "album/import/import.h"

#include "album/album_update.h"
#include "tests/album/album_fixture.h"

using import_test = album_test_t;

TEST_F(import_test, albums_of_a_book) {
    put(card + "/p.JPG", make_jpeg({.width = 130, .height = 40}));
    std::vector<files_t> files{{"p.JPG", 0}};
    put(dir / "sub/b/txt/head.txt", "T\nT\n");
    const auto import = [&] {
        return makealbumwithrotate(card, files, dir / "sub/b", silent, silent, silent, progress);
    };
    EXPECT_TRUE(import() && !fs::exists(dir / "sub/b/movie"));
    for (const char* part : {"/movie/m.MOV", "/movie/m.mpg", "/movie/m.Mp4", "/txt/p.JPEG"}) {
        files.push_back({fs::path(part).filename(), 0});
        put(card / fs::path(part).filename(), part);
        EXPECT_TRUE(import());
        EXPECT_EQ(part, text_of(dir / "sub/b" + part));
    }

    fs::remove_all(dir / "sub/b/size1");
    put(album + "/original/p.jpg", "no photograph");
    const auto update = [&] { return batchupdate(dir.path(), silent, silent, silent, silent); };
    EXPECT_EQ("false\n", outcome(update).substr(0, 6));
    EXPECT_TRUE(fs::exists(dir / "sub/b/size1/p.JPG") && fs::exists(dir / "sub/index.html")) << "after a failure";
    EXPECT_FALSE(fs::exists(card + "/index.html")) << "a directory that is no book";
    fs::remove_all(album);
    EXPECT_EQ("true\n", outcome(update));
}

TEST_F(import_test, an_old_original_goes_with_its_sizes) {
    put(card + "/p.jpg", "new");
    for (const std::string& from : {card, album + "/txt/../original"}) {
        for (const char* part : {"/original/p.jpg", "/size0/p.jpg", "/size0/q.jpg", "/size7/p.jpg", "/thumb/p.jpg"}) {
            put(album + part, "old");
        }
        fs::remove(dir / "link");
        fs::create_hard_link(album + "/original/p.jpg", dir / "link");
        fs::last_write_time(card + "/p.jpg", fs::file_time_type(std::chrono::seconds(86400)));
        EXPECT_TRUE(copyfiles(from, {{"p.jpg", 0}}, album, silent));
        EXPECT_EQ(from == card, fs::last_write_time(card + "/p.jpg") == fs::last_write_time(album + "/original/p.jpg"))
            << from;
        EXPECT_EQ(from == card ? "new" : "old", text_of(album + "/original/p.jpg"));
        EXPECT_EQ("old", text_of(dir / "link")) << from;
        EXPECT_EQ((std::vector{album + "/original/p.jpg", album + "/size0/q.jpg"}), files_below(album));
    }
    EXPECT_TRUE(fs::equivalent(album + "/original/p.jpg", dir / "link")) << "the album's own file was touched";
}

TEST_F(import_test, a_failed_copy_ends_the_import) {
    put(card + "/a.jpg", "a");
    put(dir / "a.jpg", "a");
    put(card + "/d.jpg", "d");
    put(album + "/original/a.jpg", "a");
    fs::create_directories(album + "/original/d.jpg");
    const std::string cases[][3] = {{card, "gone.jpg", "/original/gone.jpg"},
                                    {album + "/original", "gone.jpg", "/original/gone.jpg"},
                                    {card, "d.jpg", "/original/d.jpg"},
                                    {card, "../a.jpg", "/original/../a.jpg"}};
    for (const auto& c : cases) {
        steps.clear();
        const std::string failure = "false\n" + album + c[2] + ": file copy failed.\n";
        const std::vector<files_t> files{{"a.jpg", 0}, {c[1], 0}, {"d.mov", 0}};
        EXPECT_EQ(failure, outcome([&] { return copyfiles(c[0], files, album, progress); }));
        EXPECT_EQ((std::vector{1.0 / 3}), steps) << c[1];
        EXPECT_EQ((std::vector{album + "/original/a.jpg"}), files_below(album)) << "a partial copy or a later file";
    }
    put(card + "/a.jpg", std::string(4000, 'b'));
    const test_support::file_size_limit_t limit(1000);
    const std::string failure = outcome([&] {
        return makealbumwithrotate(card, {{"a.jpg", 0}}, album, silent, silent, silent, silent);
    });
    EXPECT_EQ("false\n" + album + "/original/a.jpg: file copy failed.\ncopyfiles() failed.\n", failure);
    EXPECT_EQ("a", text_of(album + "/original/a.jpg"));
}
