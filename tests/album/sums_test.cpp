#include <gmock/gmock.h>

#include "tests/album/import_fixture.h"

namespace {

using testing::EndsWith;

// FIPS 180-4's example.
constexpr const char* sum_of_abc = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

using sums_test = import_fixture_t;

TEST_F(sums_test, sums_are_kept_from_import_to_import) {
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

TEST_F(sums_test, sums_that_are_none_are_left_alone) {
    put(card + "/abc.mov", "abc");
    const std::string sum = sum_of_abc;
    const std::string lines[] = {"sums",
                                 sum,
                                 sum + "  ",
                                 sum + " movie/abc.mov",
                                 "\\" + sum + "  a\\x",
                                 "\\" + sum + "  a\\",
                                 "g" + sum.substr(1) + "  a",
                                 sum + "  a" + '\0',
                                 " # no remark",
                                 "SHA256 (a = " + sum,
                                 "SHA256 (a) = " + sum + " ",
                                 "MD5 (a) = " + sum.substr(32)};
    for (const std::string& line : lines) {
        put(album + "/SHA256SUMS", sum + " *movie/abc.mov\n" + line + "\n");
        const std::string refused = "false\n" + album + "/SHA256SUMS: line 2 is not a sum and a path.\n";
        EXPECT_EQ(refused, import({.verify = true}, {{"abc.mov"}})) << line;
        EXPECT_EQ(refused + "0", verify()) << line;
        EXPECT_FALSE(fs::exists(album + "/movie")) << line;
    }
}

TEST_F(sums_test, are_read_as_sha256sum_does_and_written_in_one_form) {
    put(album + "/movie/abc.mov", "abc");
    put(album + "/movie/a\\)\n.mov", "abc");
    put(card + "/q.mov", "abc");
    const std::string sum = sum_of_abc;
    const std::string upper = "B" + sum.substr(1, 62) + "D";
    const std::string odd = "movie/a\\\\)\\n.mov";
    const std::string forms[] = {
        sum + "  movie/abc.mov\r\n\\" + sum + "  " + odd + "\r\n",
        "\r\n" + sum + " *movie/abc.mov\n \t\\" + sum + "\t*" + odd,
        "SHA256 (movie/abc.mov) = " + upper + "\n\\SHA256(" + odd + ")=" + sum + "\n",
        sum + " movie/abc.mov\n\\" + sum + " " + odd + "\n",
        sum + "  .//./movie/abc.mov\n\\" + sum + "  " + odd + "\n" + upper + "  movie/abc.mov\n",
    };
    for (const std::string& form : forms) {
        put(album + "/SHA256SUMS", "# A remark.\r\n" + form);
        EXPECT_EQ("true\n2", verify()) << form;
        EXPECT_EQ("true\n", import({}, {{"q.mov"}})) << form;
        EXPECT_EQ("# A remark.\n\\" + sum + "  " + odd + "\n" + sum + "  movie/abc.mov\n" + sum + "  movie/q.mov\n",
                  text_of(album + "/SHA256SUMS"))
            << form;
        fs::remove(album + "/movie/q.mov");
    }
}

TEST_F(sums_test, that_contradict_each_other_or_cannot_be_read_are_named) {
    put(card + "/abc.mov", "abc");
    put(album + "/movie/abc.mov", "abc");
    const std::string sums = sum_of_abc + std::string("  movie/abc.mov\n") + std::string(64, '0') + "  movie/abc.mov\n";
    put(album + "/SHA256SUMS", sums);
    const std::string refused = "false\n" + album + "/SHA256SUMS: line 2 contradicts an earlier one: movie/abc.mov\n";
    EXPECT_EQ(refused, import({}, {{"abc.mov"}}));
    EXPECT_EQ(sums, text_of(album + "/SHA256SUMS"));
    put(album + "/movie/new.mov", "abc");
    EXPECT_EQ(refused + "movie/new.mov: not in SHA256SUMS.\n1", verify()) << "the rest is compared all the same";

    fs::remove(album + "/SHA256SUMS");
    fs::create_directory(album + "/SHA256SUMS");
    const std::string unreadable = "false\n" + album + "/SHA256SUMS: can't be read, Is a directory\n";
    EXPECT_EQ(unreadable + "0", verify());
    EXPECT_EQ(unreadable, import({.verify = true}, {{"abc.mov"}}));
}

TEST_F(sums_test, a_copy_that_differs_is_found) {
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

}  // namespace
