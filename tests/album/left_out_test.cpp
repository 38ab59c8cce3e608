#include <gmock/gmock.h>

#include "tests/album/import_fixture.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;

using left_out_test = import_fixture_t;

TEST_F(left_out_test, what_fails_is_left_out_whole) {
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

TEST_F(left_out_test, each_file_is_asked_about) {
    for (const char* name : {"bad.jpg", "good.jpg", "stop.jpg"}) {
        put(card + "/" + name, *name == 'g' ? photo : blob_t{'n', 'o'});
    }
    const std::vector<files_t> files{{"gone.jpg"}, {"bad.jpg"}, {"good.jpg"}, {"stop.jpg"}};
    strings_t asked;
    std::string wanted = "stop.jpg";
    const import_options_t options{.leaves_out = [&](const left_out_t& file) {
        EXPECT_NE("", file.reason);
        asked.push_back(file.name);
        return file.name != wanted;
    }};
    EXPECT_THAT(import(options, files), AllOf(HasSubstr("false\n"), HasSubstr("shrink() failed.\n")));
    EXPECT_EQ((strings_t{"gone.jpg", "bad.jpg", "stop.jpg"}), asked);
    EXPECT_EQ((strings_t{"gone.jpg", "bad.jpg"}), left_out);
    EXPECT_EQ((strings_t{"original/good.jpg", "original/stop.jpg"}), names("/original"));
    wanted = "";
    EXPECT_THAT(import(options, files), HasSubstr("true\n"));
    EXPECT_EQ((strings_t{"original/good.jpg"}), names("/original"));
    EXPECT_TRUE(fs::exists(album + "/html/good_1.html"));
}

TEST_F(left_out_test, no_level_stays_that_nothing_is_in) {
    put(card + "/p.jpg", make_jpeg({.width = 200, .height = 120}));
    put(album + "/size2", "no directory");
    EXPECT_THAT(import({.keep_going = true}, {{"p.jpg"}}), HasSubstr("true\n"));
    EXPECT_EQ((strings_t{"p.jpg"}), left_out);
    EXPECT_FALSE(fs::exists(album + "/size0") || fs::exists(album + "/size1") || fs::exists(album + "/original/p.jpg"));
}

// A name has at most 255 bytes.
TEST_F(left_out_test, a_photograph_whose_page_would_have_too_long_a_name_is_not_copied) {
    const auto name = [](size_t length) { return std::string(length - 4, 'n') + ".jpg"; };
    std::vector<files_t> files;
    for (const size_t length : {255, 253, 252, 254}) {
        files.push_back({name(length)});
        put(card + "/" + name(length), length == 254 ? make_jpeg({.width = 64, .height = 48}) : photo);
    }
    std::string lines = "true\n";
    for (const size_t length : {255, 253}) {
        lines += album + "/html/" + name(length).substr(0, length - 4) + "_1.html: File name too long\n";
        lines += album + "/original/" + name(length) + ": file copy failed.\n";
    }
    EXPECT_EQ(lines, import({.keep_going = true}, files));
    EXPECT_EQ((strings_t{name(255), name(253)}), left_out);
    EXPECT_EQ((strings_t{"original/" + name(252), "original/" + name(254)}), names("/original"));
    EXPECT_EQ("true\n", update(orphans_t::report));
}

}  // namespace
