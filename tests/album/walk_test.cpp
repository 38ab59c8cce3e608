#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "album/album_update.h"
#include "album/album_walk.h"
#include "album/book_entries.h"
#include "tests/album/album_fixture.h"

struct walk_test : album_test_t {
    // What is visited below the fixture's directory, in order, and whether it succeeded.
    std::string visited(const std::string& path) {
        std::string names;
        const auto add = [&](const std::string& found) {
            names += " " + fs::path(found).lexically_relative(dir.path()).string();
            return fs::path(found).filename() != "bad";
        };
        const walk_outcome_t outcome = visit_albums(path, {add, add});
        return std::string(outcome.succeeded ? "good" : "failed") + (outcome.has_album ? "" : " none") + names;
    }
};

TEST_F(walk_test, albums_and_books) {
    fs::create_directories(dir / "book/a/original");
    fs::create_directories(dir / "book/deep/er/original");
    fs::create_directories(dir / "book/empty/not/a/book");
    fs::create_directories(dir / "book/written/txt");
    fs::create_directories(dir / "other/b/original");
    fs::create_directories(dir / "book/bad/original");
    fs::create_symlink("../other/b", dir / "book/link");
    fs::create_symlink("a", dir / "book/same");
    fs::create_symlink("../other", dir / "book/no_album");
    fs::create_symlink("..", dir / "book/above");
    fs::create_symlink("nowhere", dir / "book/dangling");
    EXPECT_EQ("failed book/a book/bad book/deep/er book/deep book/link book/written book", visited(dir / "book"));
    EXPECT_EQ("good none book/empty", visited(dir / "book/empty"));
    fs::remove_all(dir / "book/a/original");
    fs::create_symlink("../unmounted", dir / "book/a/original");
    EXPECT_EQ("good book/a", visited(dir / "book/a")) << "its pages are not a book's";
}

TEST_F(walk_test, what_is_no_directory_is_passed_over) {
    const std::string path = dir / "socket";
    sockaddr_un address{AF_UNIX, {}};
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(0, bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address));
    close(descriptor);
    put(dir / "file", "");
    EXPECT_EQ("true\n", outcome([&] { return batchupdate(dir.path(), silent, silent, silent, silent); }));
    EXPECT_EQ("false\n" + path + ": getdirs() failed, Not a directory\n",
              outcome([&] { return visit_albums(path, {}).succeeded; }));
}

TEST_F(walk_test, an_interrupted_import_is_no_empty_album) {
    EXPECT_FALSE(is_import_interrupted(album));
    put(original_path(album, "p.jpg"), "");
    EXPECT_TRUE(is_import_interrupted(album));
    fs::create_directory(album + "/thumb");
    EXPECT_FALSE(is_import_interrupted(album) || is_import_interrupted(dir.path()));
}

TEST_F(walk_test, entries_of_a_book) {
    put(album + "/txt/head.txt", "A\nA\nfirst\r\nsecond");
    put(album + "/txt/count.txt", "2+35 \n+1");
    put(dir / "book/txt/HEAD.TXT", "B\nB\n");
    put(dir / "book/txt/count.txt", "of no album");
    fs::create_directories(dir / "broken/txt/head.txt");
    fs::create_directories(dir / "plain/thumb");
    std::vector<book_entry_t> entries;
    EXPECT_EQ(dir / "broken/txt/head.txt: comment text load failed, Is a directory\n",
              stderr_of([&] { EXPECT_FALSE(list_book_entries(entries, dir.path())); }));
    std::string rows;
    for (const book_entry_t& entry : entries) {
        rows += entry.name + "," + entry.title + "," + entry.count + "," + entry.head_line +
                (entry.unread ? ",unread" : "") + (entry.is_album ? ",album|" : "|");
    }
    EXPECT_EQ("broken,,,,unread|book,B,,|album,A,2+35,first,album|", rows);
    EXPECT_EQ(std::errc::no_such_file_or_directory, list_book_entries(entries, dir / "nowhere"));
    EXPECT_TRUE(entries.empty());
}
