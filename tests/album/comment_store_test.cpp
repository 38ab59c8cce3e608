#include "album/texts/comment_store.h"

#include "tests/album/album_fixture.h"

using comment_store_test = album_test_t;

TEST_F(comment_store_test, head_files) {
    const std::string path = album + "/txt/head.txt";
    const std::vector<std::string> cases[] = {
        // file, title, head, warning
        {"Trip\r\nTrip\r\na\r\n\r\nb", "Trip", "a\r\n\r\nb", ""},
        {"Trip\r\nTrip2\r\na\n", "Trip", "a\n", path + ": title different.\nTrip\r\nTrip2\r\n"},
        {"Trip\n", "Trip", "", path + ": title different.\nTrip\n\n"},
        {"Trip\nTrip", "Trip", "", ""},
        {"\n\na", "old", "a", ""},
        {"", "old", "", ""},
    };
    for (const auto& c : cases) {
        put(path, c[0]);
        std::string title = "old", head = "old", last = "old";
        EXPECT_EQ("true\n" + c[3], outcome([&] { return loadcommenttxt(album, title, head, last); }));
        EXPECT_EQ(c[1] + "|" + c[2] + "|old", title + "|" + head + "|" + last) << c[0];
    }
}

TEST_F(comment_store_test, upper_case_names_are_read_until_the_first_save) {
    put(album + "/txt/HEAD.TXT", "Up\nUp\n");
    put(album + "/txt/LAST.TXT", "bye");
    put(album + "/txt/p.jpg.TXT", "up");
    std::string title, head, last, photo;
    EXPECT_TRUE(loadcommenttxt(album, title, head, last) && loadphotocomment(photo, album, "p.jpg"));
    EXPECT_EQ("Up bye up", title + " " + last + " " + photo);
    EXPECT_TRUE(savecommenttxt(album, "Trip", "one\n\ntwo\r\n", "") && savephotocomment("one\ntwo", album, "x/p.jpg"));
    EXPECT_EQ("Trip\r\nTrip\r\none\r\n\r\ntwo\r\n", text_of(album + "/txt/head.txt"));
    std::list<std::string> lines{"old"};
    EXPECT_TRUE(loadcommenttxt(album, title, head, last) && loadphotocommentlines(lines, album, "p.jpg"));
    EXPECT_EQ("Trip|one\r|two\r|", title + "|" + lines.front() + "|" + lines.back() + "|" + last);
    EXPECT_EQ("false\n", outcome([&] { return loadphotocommentlines(lines, album, "q.jpg") || lines.empty(); }));
    const std::string head_path = album + "/txt/head.txt";
    fs::remove(head_path);
    fs::create_symlink("/dev/full", head_path);
    EXPECT_EQ("false\n" + head_path + ": file open failed, not a regular file\n",
              outcome([&] { return savecommenttxt(album, "Trip", "", ""); }));
}

TEST_F(comment_store_test, texts_that_find_no_room_leave_the_old_ones) {
    ASSERT_TRUE(savecommenttxt(album, "Old", "one", "two") && savephotocomment("three", album, "p.jpg"));
    const test_support::file_size_limit_t limit(500);
    const std::string path = album + "/txt/";
    const std::string much(501, 'x');
    EXPECT_EQ("false\n" + path + "head.txt: file write error.\n",
              outcome([&] { return savecommenttxt(album, much, "", ""); }));
    EXPECT_EQ("false\n" + path + "last.txt: file write error.\n",
              outcome([&] { return savecommenttxt(album, "New", "", much); }));
    EXPECT_EQ("false\n" + path + "p.jpg.txt: write open error, File too large\n",
              outcome([&] { return savephotocomment(much, album, "p.jpg"); }));
    EXPECT_EQ("New\r\nNew\r\n", text_of(path + "head.txt"));
    EXPECT_EQ("two\r\nthree\r\n", text_of(path + "last.txt") + text_of(path + "p.jpg.txt"));
}

TEST_F(comment_store_test, texts_that_can_not_be_read_are_neither_absent_nor_replaced) {
    const std::string txt = album + "/txt/";
    for (const char* name : {"head.txt", "HEAD.TXT", "last.txt", "LAST.TXT"}) {
        fs::create_directory(txt + name);
        std::string title = "old", head = "old", last = "old";
        const std::string line = txt + name + ": comment text load failed, Is a directory\n";
        EXPECT_EQ("false\n" + line, outcome([&] { return loadcommenttxt(album, title, head, last); }));
        EXPECT_EQ(line, stderr_of([&] { loadcomment(album + "/txt", title, head, last); }));
        EXPECT_EQ("oldoldold", title + head + last) << name;
        const bool is_last = std::string(name)[0] == 'l' || std::string(name)[0] == 'L';
        const std::string written = txt + (is_last ? "last.txt" : "head.txt");
        EXPECT_EQ("false\n" + written + ": file open failed, Is a directory\n",
                  outcome([&] { return savecommenttxt(album, "T", "", ""); }));
        fs::remove(txt + name);
        EXPECT_FALSE(fs::exists(written)) << name;
    }
    for (const char* name : {"p.jpg.txt", "p.jpg.TXT"}) {
        fs::create_symlink(name, txt + name);
        std::string text = "old";
        EXPECT_EQ("false\n" + txt + name + ": comment text load failed, Too many levels of symbolic links\n",
                  outcome([&] { return loadphotocomment(text, album, "p.jpg"); }));
        EXPECT_EQ("false\n" + txt + "p.jpg.txt: write open error, Too many levels of symbolic links\n",
                  outcome([&] { return savephotocomment(text, album, "p.jpg"); }));
        EXPECT_TRUE(text == "old" && fs::is_symlink(txt + name));
        fs::remove(txt + name);
    }
}

TEST_F(comment_store_test, a_title_stays_on_its_line) {
    for (const char* title : {"a b", "a\nb", "a\rb\r\n\n"}) {
        ASSERT_TRUE(savecommenttxt(album, title, "", ""));
        EXPECT_EQ("a b\r\na b\r\n", text_of(album + "/txt/head.txt"));
    }
}

TEST_F(comment_store_test, links_are_followed_inside_the_album_only) {
    const std::string head = album + "/txt/head.txt", outside = dir / "outside";
    const std::pair<const char*, const char*> cases[] = {
        {"../www/new.txt", "/www/new.txt"}, {"twin.txt", "/txt/twin.txt"}, {"../../outside", nullptr}};
    fs::create_directory(album + "/www");
    put(outside, "kept");
    for (const auto& [link, target] : cases) {
        fs::remove(head);
        fs::create_symlink(link, head);
        const std::string refused = "false\n" + head + ": file open failed, a link that leads out of the directory\n";
        EXPECT_EQ(target == nullptr ? refused : "true\n", outcome([&] { return savecommenttxt(album, "T", "", ""); }));
        EXPECT_TRUE(fs::is_symlink(head));
        EXPECT_EQ("T\r\nT\r\n", target == nullptr ? "T\r\nT\r\n" : text_of(album + target));
    }
    EXPECT_EQ("kept", text_of(outside));
}
