#include <sys/stat.h>

#include "album/import/import_check.h"
#include "tests/album/import_fixture.h"

namespace {

using conflict_test = import_fixture_t;

ino_t inode_of(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(0, stat(path.c_str(), &status));
    return status.st_ino;
}

TEST_F(conflict_test, other_contents_are_found_before_anything_is_written) {
    struct case_t {
        const char *name, *in_card, *in_album;
        bool is_conflict;
    };
    const case_t cases[] = {{"same.jpg", "a", "a", false},    {"other.jpg", "a", "b", true},
                            {"longer.MOV", "a", "aa", true},  {"text.txt", "a", "b", true},
                            {"count.txt", "a", "b", false},   {"new.jpg", "a", nullptr, false},
                            {"gone.jpg", nullptr, "a", false}};
    for (const case_t& c : cases) {
        const std::string destination = entry_path(entry_path(album, directory_of_kind(c.name)), c.name);
        if (c.in_card != nullptr) {
            put(card + "/" + c.name, c.in_card);
        }
        if (c.in_album != nullptr) {
            put(destination, c.in_album);
        }
        EXPECT_EQ(c.is_conflict ? strings_t{destination} : strings_t{}, find_conflicts(card, {{c.name}}, album))
            << c.name;
    }
    EXPECT_TRUE(find_conflicts(album + "/original", {{"other.jpg"}}, album).empty());
}

// The sum of "abc" was noted when it was imported.
TEST_F(conflict_test, a_sum_that_would_change_is_found_before_anything_is_written) {
    const char* const sum_line = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad  movie/abc.mov\n";
    struct case_t {
        const char *name, *in_card, *in_album;
        bool is_conflict;
    };
    const case_t cases[] = {{"both are damaged alike", "abd", "abd", true},
                            {"lost and damaged", "abd", nullptr, true},
                            {"lost", "abc", nullptr, false},
                            {"damaged", "abc", "abd", false},
                            {"the card's is gone", nullptr, "abd", false}};
    for (const case_t& c : cases) {
        for (const auto& [path, bytes] : {std::pair{card, c.in_card}, std::pair{album + "/movie", c.in_album}}) {
            fs::remove(path + "/abc.mov");
            if (bytes != nullptr) {
                put(path + "/abc.mov", bytes);
            }
        }
        put(album + "/SHA256SUMS", sum_line);
        const auto look = [&](const std::string& from) {
            return findings([&](const finding_t& found) {
                return keeps_sums(from, {{"abc.mov"}, {"x.txt"}}, album, false, found);
            });
        };
        EXPECT_EQ(c.is_conflict ? "false\nmovie/abc.mov: has another sum in SHA256SUMS.\n" : "true\n", look(card))
            << c.name;
        EXPECT_EQ("true\n", look(album + "/movie")) << c.name;
    }
}

TEST_F(conflict_test, the_same_copy_stays_and_takes_the_date) {
    put(card + "/p.jpg", photo);
    EXPECT_EQ("true\n", import({}, {{"p.jpg"}}));
    fs::create_hard_link(album + "/original/p.jpg", dir / "link");
    put(album + "/size1/p.jpg", "of an older import");
    EXPECT_EQ("true\n", import({}, {{"p.jpg"}}));
    EXPECT_TRUE(fs::equivalent(album + "/original/p.jpg", dir / "link"));
    EXPECT_NE("of an older import", text_of(album + "/size1/p.jpg"));

    const auto date = [](const std::string& path) { return fs::last_write_time(path); };
    const auto first_date = date(dir / "link");
    fs::last_write_time(card + "/p.jpg", first_date - std::chrono::hours(24));
    EXPECT_EQ("true\n", import({}, {{"p.jpg"}}));
    EXPECT_EQ(first_date, date(dir / "link")) << "the file may be another album's";
    EXPECT_EQ(date(card + "/p.jpg"), date(album + "/original/p.jpg"));

    fs::last_write_time(album + "/original/p.jpg", first_date);
    const ino_t inode = inode_of(album + "/original/p.jpg");
    EXPECT_EQ("true\n", import({}, {{"p.jpg"}}));
    EXPECT_EQ(inode, inode_of(album + "/original/p.jpg"));
    EXPECT_EQ(date(card + "/p.jpg"), date(album + "/original/p.jpg"));

    fs::remove(album + "/original/p.jpg");
    fs::create_hard_link(card + "/p.jpg", album + "/original/p.jpg");
    EXPECT_EQ("true\n", import({}, {{"p.jpg"}}));
    EXPECT_FALSE(fs::equivalent(album + "/original/p.jpg", card + "/p.jpg")) << "a link is no copy";
}

}  // namespace
