#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "album/shell_command.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"
#include "toolkit/text_encoding.h"

namespace {

using namespace taloram;
using namespace test_support;
namespace fs = std::filesystem;

// A program that writes its arguments, each in brackets, beside itself.
void make_program(const std::string& path) {
    write_file(path, std::string("#!/bin/sh\nfor i; do printf '[%s]' \"$i\"; done >\"$0.out\"\n"));
    fs::permissions(path, fs::perms::owner_all);
}

std::string arguments_of(const std::string& program) {
    const blob_t out = read_file(program + ".out");
    return {out.begin(), out.end()};
}

TEST(ShellCommand, TellsWordsThatAShellTakesLiterally) {
    for (const char* word : {"/home/me/album", "a", "./-x", "a=b", "P1010001.JPG", "/a@b%c+d,e:f"}) {
        EXPECT_TRUE(is_shell_word(word)) << word;
    }
    for (const char* path :
         {"",     "-rf", "a b", "a;b", "$HOME", "a*", "~",  "~x",    "a'b", "a\"b", "a\\b", "`a`",
          "a\nb", "(a)", "a&b", "a|b", "a>b",   "#a", "!a", "{a,b}", "[a]", "a?",   "a\tb", "caf\u00e9"}) {
        EXPECT_FALSE(is_shell_word(path)) << path;
    }
}

TEST(ShellCommand, ProgramsGetExactlyThePath) {
    const temp_dir_t dir;
    const std::string path_before = std::getenv("PATH");
    setenv("PATH", (dir.path() + ":" + path_before).c_str(), 1);
    make_program(dir / "open");
    fs::create_directory(dir / "my programs");
    make_program(dir / "talovue3.mac");
    make_program(dir / "my programs/talovue3.mac");
    for (const std::string page : {"/a/index.html", "/a b/$(touch x);'/index.html"}) {
        SCOPED_TRACE(page);
        EXPECT_TRUE(open_in_safari(page));
        EXPECT_EQ(arguments_of(dir / "open"), "[-a][/Applications/Safari.app][" + page + "]");
        for (const std::string folder : {"", "my programs/"}) {
            EXPECT_TRUE(run_viewer(dir / folder, page));
            EXPECT_EQ(arguments_of(dir / (folder + "talovue3.mac")), "[" + page + "]");
        }
    }
    EXPECT_FALSE(run_viewer(dir / "none/", "/a"));
    fs::create_directory(dir / "alone");
    fs::copy_file(TALORAM_CATALOGUES "/../viewer/talovue3.mac", dir / "alone/talovue3.mac");
    for (const char* page : {"/a", "/a b"}) {
        EXPECT_NE(stderr_of([&] { EXPECT_FALSE(run_viewer(dir / "alone/", page)); }), "") << "no viewer beside it";
    }
    write_file(dir / "open", std::string("#!/bin/sh\nexit 1\n"));
    EXPECT_FALSE(open_in_safari("/a"));
    EXPECT_FALSE(open_in_safari("/a b"));
    setenv("PATH", path_before.c_str(), 1);
}

TEST(ShellCommand, RenamesOntoFreeNamesOnly) {
    const temp_dir_t dir;
    const std::string names[] = {"plain", "with blank", "-rf;$x", "last"};
    fs::create_directory(dir / names[0]);
    fs::create_directory(dir / "taken");
    fs::create_symlink("nowhere", dir / "link");
    for (const char* refused : {"", ".", "..", "a/b", "taken", "link", "plain"}) {
        EXPECT_EQ(rename_entry(dir.path(), "plain", refused), rename_result_t::refused) << refused;
    }
    for (size_t i = 1; i < 4; ++i) {
        EXPECT_EQ(rename_entry(dir.path(), names[i - 1], names[i]), rename_result_t::done) << names[i];
        EXPECT_TRUE(fs::is_directory(dir / names[i]) && !fs::exists(dir / names[i - 1])) << names[i];
    }
    EXPECT_EQ(rename_entry(dir.path(), "gone away", "new"), rename_result_t::failed);
}

TEST(ShellCommand, RemovesOneTreeAndFollowsNoLink) {
    const temp_dir_t dir;
    fs::create_directory(dir / "a");
    write_file(dir / "a/kept", std::string("kept"));
    for (const char* name : {"plain", "a b", "-rf", "x; rm -rf a"}) {
        SCOPED_TRACE(name);
        fs::create_directories(dir / name + "/below/more");
        write_file(dir / name + "/below/file", std::string("text"));
        fs::create_directory_symlink(dir / "a", dir / name + "/link");
        EXPECT_TRUE(remove_tree(dir / name));
        EXPECT_FALSE(fs::exists(dir / name));
        EXPECT_TRUE(fs::exists(dir / "a/kept"));
    }
    for (const std::string& refused : {std::string(), std::string("/"), std::string("//"), dir / "a/..", dir / "."}) {
        EXPECT_FALSE(remove_tree(refused)) << refused;
    }
    EXPECT_TRUE(fs::exists(dir / "a/kept"));
}

TEST(TextEncoding, NeverThrowsAndFindsMnemonics) {
    EXPECT_EQ(to_toolkit("a\x83\x65").raw(), "a\xEF\xBF\xBD\x65");
    EXPECT_EQ(from_toolkit(to_toolkit("caf\u00e9")), "caf\u00e9");
    std::string taken = "e";
    EXPECT_EQ(mnemonic_text(msg_edit, taken), "E_dit Book");
    EXPECT_EQ(mnemonic_text(msg_delete, taken), "De_lete");
}

}  // namespace
