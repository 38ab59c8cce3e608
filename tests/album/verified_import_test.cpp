#include <gmock/gmock.h>

#include "album/album_update.h"
#include "album/import.h"
#include "album/import_check.h"
#include "album/verification.h"
#include "tests/album/album_fixture.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;

// FIPS 180-4's example.
constexpr const char* sum_of_abc = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

struct verified_import_test : album_test_t {
    std::string import(const import_options_t& options, const std::vector<files_t>& files, std::string from = "") {
        from = from.empty() ? card : from;
        return outcome([&] { return import_album(from, files, album, options, unseen, left_out); });
    }
    std::string verify() {
        size_t count = 0;
        std::string found;
        const std::string result = outcome([&] {
            const auto add = [&](const std::string& path, const std::string& what) {
                found += fs::relative(path, album).string() + ": " + what + "\n";
            };
            return verify_album(album, add, count);
        });
        return result + found + std::to_string(count);
    }
    std::vector<std::string> names(const std::string& part) const {
        std::vector<std::string> paths = files_below(album + part);
        for (std::string& path : paths) {
            path.erase(0, album.size() + 1);
        }
        return paths;
    }
    using strings_t = std::vector<std::string>;

    const blob_t photo = make_jpeg({.width = 100, .height = 40});
    progress_signals_t unseen;
    std::vector<std::string> left_out;
};

TEST_F(verified_import_test, sums_are_kept_from_import_to_import) {
    put(card + "/abc.mov", "abc");
    put(card + "/p.jpg", photo);
    put(card + "/b\\n\nr\r.mp4", "abc");
    put(card + "/t.txt", "text");
    EXPECT_EQ("true\n", import({.verify = true}, {{"abc.mov"}, {"p.jpg"}, {"b\\n\nr\r.mp4"}, {"t.txt"}}));
    const std::string sums = text_of(album + "/SHA256SUMS");
    const std::string movies =
        std::string(sum_of_abc) + "  movie/abc.mov\n\\" + sum_of_abc + "  movie/b\\\\n\\nr\\r.mp4\n";
    EXPECT_THAT(sums, testing::StartsWith(movies));
    EXPECT_EQ("true\n3", verify());

    put(card + "/q.MOV", "q");
    EXPECT_EQ("true\n", import({}, {{"q.MOV"}, {"p.jpg"}})) << "without the option";
    EXPECT_EQ("true\n4", verify());
    // What was copied before the failure has replaced a file: its sum has to follow.
    put(card + "/abc.mov", "abcd");
    EXPECT_THAT(import({}, {{"abc.mov"}, {"gone.mov"}}),
                EndsWith("gone.mov: file copy failed.\ncopyfiles() failed.\n"));
    EXPECT_EQ("true\n4", verify());

    put(album + "/original/p.jpg", "changed");
    fs::rename(album + "/movie/abc.mov", album + "/movie/x.mov");
    EXPECT_EQ("false\nmovie/abc.mov: missing.\noriginal/p.jpg: changed.\nmovie/x.mov: not in SHA256SUMS.\n4", verify());
    EXPECT_EQ("false\n" + album + "/original/p.jpg: file copy failed.\nverify() failed.\n",
              import({.verify = true}, {{"p.jpg"}}, album + "/original"))
        << "the album's own file is held against its sum";
    fs::remove(album + "/SHA256SUMS");
    EXPECT_EQ("false\n" + album + ": has no SHA256SUMS.\n0", verify());
}

TEST_F(verified_import_test, sums_that_are_none_are_left_alone) {
    put(card + "/abc.mov", "abc");
    const std::string sum = sum_of_abc;
    for (const std::string& line : {std::string("sums"), sum, sum + "  ", sum + " movie/abc.mov", "\\" + sum + "  a\\x",
                                    "\\" + sum + "  a\\", "g" + sum.substr(1) + "  a"}) {
        put(album + "/SHA256SUMS", sum + " *movie/abc.mov\n" + line + "\n");
        const std::string refused = "false\n" + album + "/SHA256SUMS: line 2 is not a sum and a path.\n";
        EXPECT_EQ(refused, import({.verify = true}, {{"abc.mov"}})) << line;
        EXPECT_EQ(refused + "0", verify()) << line;
        EXPECT_FALSE(fs::exists(album + "/movie")) << line;
    }
}

TEST_F(verified_import_test, a_copy_that_differs_is_found) {
    put(dir / "a", "abc");
    put(dir / "b", "abd");
    std::string sum;
    manifest_t manifest;
    EXPECT_TRUE(verify_copy(sum, {dir / "a", dir / "a", "a", false}, manifest));
    EXPECT_EQ(sum_of_abc, sum);
    EXPECT_FALSE(verify_copy(sum, {dir / "a", dir / "b", "b", false}, manifest));
    EXPECT_FALSE(verify_copy(sum, {dir / "gone", dir / "a", "a", false}, manifest));
    EXPECT_FALSE(verify_copy(sum, {dir / "a", dir / "gone", "a", false}, manifest));
}

TEST_F(verified_import_test, what_fails_is_left_out_whole) {
    for (const char* name : {"good.jpg", "bad.jpg", "old.jpg"}) {
        put(card + "/" + name, photo);
    }
    const std::vector<files_t> files{{"good.jpg"}, {"bad.jpg"}, {"old.jpg"}, {"gone.jpg"}, {"gone.mov"}};
    EXPECT_THAT(import({.keep_going = true}, files), HasSubstr("gone.jpg: file copy failed.\n"));
    EXPECT_TRUE(fs::exists(album + "/html/bad_1.html"));

    put(card + "/bad.jpg", "no photograph");
    fs::remove(card + "/old.jpg");
    for (const char* run : {"first", "second"}) {
        EXPECT_THAT(import({.verify = true, .keep_going = true}, files),
                    AllOf(HasSubstr("true\n"), HasSubstr("\nbad.jpg: analyze_markers() failed.\n"),
                          HasSubstr("original/old.jpg: file copy failed.\n")));
        EXPECT_EQ((strings_t{"old.jpg", "gone.jpg", "gone.mov", "bad.jpg"}), left_out) << run;
        EXPECT_EQ((strings_t{"html/good_1.html", "html/old_1.html"}), names("/html")) << run;
        EXPECT_EQ((strings_t{"original/good.jpg", "original/old.jpg"}), names("/original")) << run;
        EXPECT_EQ((strings_t{"size1/good.jpg", "size1/old.jpg"}), names("/size1")) << run;
        EXPECT_EQ("false\noriginal/old.jpg: not in SHA256SUMS.\n1", verify()) << "from the import without sums";
        EXPECT_EQ("+2\n", text_of(album + "/txt/count.txt")) << run;
    }
    // The album's own original may be the only one, and so may the one that the source leads to.
    put(album + "/original/bad.jpg", "no photograph");
    fs::remove(card + "/bad.jpg");
    fs::create_symlink(album + "/original/bad.jpg", card + "/bad.jpg");
    for (const std::string& from : {album + "/original", card}) {
        EXPECT_THAT(import({.keep_going = true}, {{"bad.jpg"}}, from), HasSubstr("true\n"));
        EXPECT_EQ("no photograph", text_of(album + "/original/bad.jpg")) << from;
        EXPECT_FALSE(fs::exists(album + "/size0/bad.jpg")) << from;
    }
    fs::remove_all(album + "/original");
    put(album + "/original", "a file");
    EXPECT_EQ("false\n" + album + "/original: mkdir failed, File exists\ncopyfiles() failed.\n",
              import({.keep_going = true}, {{"good.jpg"}}));
}

TEST_F(verified_import_test, other_contents_are_found_before_anything_is_written) {
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

TEST_F(verified_import_test, the_same_copy_stays_and_takes_the_date) {
    put(card + "/p.jpg", photo);
    EXPECT_EQ("true\n", import({}, {{"p.jpg"}}));
    fs::create_hard_link(album + "/original/p.jpg", dir / "link");
    put(album + "/size1/p.jpg", "of an older import");
    fs::last_write_time(card + "/p.jpg", fs::file_time_type::clock::now() - std::chrono::hours(24));
    EXPECT_EQ("true\n", import({}, {{"p.jpg"}}));
    EXPECT_TRUE(fs::equivalent(album + "/original/p.jpg", dir / "link"));
    EXPECT_LT(fs::last_write_time(dir / "link") - fs::last_write_time(card + "/p.jpg"), std::chrono::seconds(1));
    EXPECT_NE("of an older import", text_of(album + "/size1/p.jpg"));

    fs::remove(album + "/original/p.jpg");
    fs::create_hard_link(card + "/p.jpg", album + "/original/p.jpg");
    EXPECT_EQ("true\n", import({}, {{"p.jpg"}}));
    EXPECT_FALSE(fs::equivalent(album + "/original/p.jpg", card + "/p.jpg")) << "a link is no copy";
}

TEST_F(verified_import_test, room_is_looked_at_first) {
    put(card + "/m.mov", "m");
    put(card + "/p.jpg", photo);
    const auto room = [&](const std::string& place) {
        return outcome([&] { return has_room(card, {{"m.mov"}, {"p.jpg"}}, place); });
    };
    EXPECT_EQ("true\n", room(dir / "not/yet/there"));
    fs::resize_file(card + "/m.mov", uintmax_t{1} << 43);
    EXPECT_THAT(
        room(dir / "not/yet/there"),
        MatchesRegex("false\n/.*/not/yet/there: [0-9]\\.[0-9] TiB more free space is needed for this import\\.\n"));
    fs::create_directories(album + "/movie");
    fs::rename(card + "/m.mov", album + "/movie/m.mov");
    fs::create_symlink(album + "/movie/m.mov", card + "/m.mov");
    EXPECT_THAT(room(album), HasSubstr("TiB more"));
    EXPECT_EQ("true\n", outcome([&] { return has_room(album + "/movie", {{"m.mov"}}, album); })) << "is there already";
}

TEST_F(verified_import_test, an_update_prunes_only_when_told) {
    for (const char* name : {"a.jpg", "gone.jpg", "a_1.JPG"}) {
        put(album + "/original/" + name, photo);
    }
    const auto update = [&](orphans_t orphans) {
        return outcome([&] { return batchupdate(album, {orphans}, unseen); });
    };
    EXPECT_EQ("true\n", update(orphans_t::report));
    const strings_t kept = {"html/notes_1x.html", "html/notes_17.html", "html/notes.html", "size0/gone.txt",
                            "size1/q.png",        "thumb/gone.gif",     "size17/gone.jpg", "txt/gone.jpg.txt"};
    for (const std::string& path : kept) {
        put(album + "/" + path, "of the user");
    }
    put(album + "/size2/gone.jpg", "an older level");
    put(album + "/html/lost_3.html", "a page alone");
    const strings_t before = names("/html");
    fs::remove(album + "/original/gone.jpg");
    EXPECT_THAT(update(orphans_t::report),
                AllOf(HasSubstr("/original/gone.jpg: gone; --prune"), HasSubstr("/html/lost_3.html: its photo")));
    EXPECT_EQ(before, names("/html"));

    fs::remove(album + "/thumb/gone.gif");  // the pages show whatever has a thumbnail
    EXPECT_EQ("true\n", update(orphans_t::remove));
    for (const std::string& path : kept) {
        EXPECT_EQ(path != "thumb/gone.gif", fs::exists(album + "/" + path)) << path;
    }
    EXPECT_TRUE(names("/size2").empty());
    EXPECT_EQ((strings_t{"thumb/a.jpg", "thumb/a_1.JPG"}), names("/thumb"));
    EXPECT_EQ(
        (strings_t{"html/a_1.html", "html/a_1_1.html", "html/notes.html", "html/notes_17.html", "html/notes_1x.html"}),
        names("/html"));
}

}  // namespace
