#include "settings/settings.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "settings/looks.h"
#include "settings/settings_file.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

using taloram::g_global;

namespace {

// `message` with the settings file for "~".
std::string in(const test_support::temp_dir_t& home, const std::string& message) {
    return message.starts_with('~') ? home / ".taloram" + message.substr(1) : message;
}

TEST(Settings, DefaultsDependOnTheEnvironment) {
    struct case_t {
        const char *lang, *charset;
    };
    for (const case_t& c : {case_t{"ja_JP.SJIS", "shift_jis"},
                            {"ja-JP", "shift_jis"},
                            {"ja_jp.EUCJP", "euc-jp"},
                            {"ja_JP.sjis", "UTF-8"},
                            {"de_DE.UTF-8", "UTF-8"},
                            {"", "UTF-8"}}) {
        setenv("LANG", c.lang, 1);
        EXPECT_EQ(taloram::global_t().html_header,
                  std::string("<meta http-equiv=\"Content-Type\" content=\"text/html; charset=") + c.charset + "\">");
    }
    setenv("HOME", "/home/somebody", 1);
    EXPECT_EQ(taloram::global_t().album, "/home/somebody/album");
    unsetenv("HOME");
    EXPECT_EQ(taloram::global_t().album, "album");
    EXPECT_FALSE(taloram::loadini("", "taloram"));
    taloram::saveini("", "taloram");
}

TEST(Settings, FileKeepsEverySetting) {
    const test_support::temp_dir_t home;
    setenv("HOME", home.path().c_str(), 1);
    taloram::global_t settings;
    settings.from = " a=b ";
    settings.album = "";
    settings.html_header = "<meta>\r\njpeg_compress=1\n";
    settings.shrink_width = 12800;
    settings.jpeg_compress = 7;
    g_global = settings;
    {
        const test_support::grouping_locale_t grouping;
        taloram::saveini("", "/somewhere/taloram.bin");
    }
    const auto file = test_support::read_file(home / ".taloram");
    EXPECT_EQ(std::string(file.begin(), file.end()),
              "from= a=b \r\nalbum=\r\nshrink_size=12800,768\r\njpeg_compress=7\r\nhorizontal_items=5\r\n"
              "html_header=<meta> jpeg_compress=1\r\nhtml_address=" +
                  settings.html_address + "\r\n");
    {
        const test_support::file_size_limit_t limit(file.size() / 2);
        taloram::saveini("", "taloram");
    }
    EXPECT_EQ(test_support::read_file(home / ".taloram"), file) << "the old file, when there is no room for a new one";
    g_global = taloram::global_t();
    ASSERT_TRUE(taloram::loadini("", "taloram"));
    EXPECT_EQ(g_global.from, " a=b ");
    EXPECT_EQ(g_global.album, "");
    EXPECT_EQ(g_global.shrink_width, 12800U);
    EXPECT_EQ(g_global.jpeg_compress, 7U);
}

TEST(Settings, NumbersAndUnknownKeys) {
    const test_support::temp_dir_t home;
    setenv("HOME", home.path().c_str(), 1);
    struct case_t {
        const char* line;
        uint64_t width, height, quality;
        const char* error;
    };
    constexpr case_t cases[] = {
        {"shrink_size=800,600", 800, 600, 1, ""},
        {"shrink_size=0x20x010", 32, 8, 1, ""},
        {"shrink_size=800", 800, 2, 1, ""},
        {"shrink_size=800,", 800, 2, 1, ""},
        {"shrink_size=", 1, 2, 1, "~: can't be used: shrink_size=\n"},
        {"shrink_size=abc", 1, 2, 1, "~: can't be used: shrink_size=abc\n"},
        {"shrink_size=0,0", 1, 2, 1, "~: can't be used: shrink_size=0,0\n"},
        {"shrink_size=800,x", 1, 2, 1, "~: can't be used: shrink_size=800,x\n"},
        {"jpeg_compress=010\r", 1, 2, 8, ""},
        {"jpeg_compress=fine", 1, 2, 1, "~: can't be used: jpeg_compress=fine\n"},
        {"jpeg_compress=101", 1, 2, 1, "~: can't be used: jpeg_compress=101\n"},
        {"horizontal_items=1001", 1, 2, 1, "~: can't be used: horizontal_items=1001\n"},
        {"shrink_level=3", 1, 2, 1, ""},
        {"no setting", 1, 2, 1, ""},
        {"Quality=3", 1, 2, 1, "Unrecognized name: Quality\n"},
    };
    for (const case_t& c : cases) {
        SCOPED_TRACE(c.line);
        g_global.shrink_width = 1;
        g_global.shrink_height = 2;
        g_global.jpeg_compress = 1;
        test_support::write_file(home / ".taloram", std::string(c.line) + "\n");
        EXPECT_EQ(test_support::stderr_of([] { EXPECT_TRUE(taloram::loadini("", "taloram")); }), in(home, c.error));
        EXPECT_EQ(g_global.shrink_width, c.width);
        EXPECT_EQ(g_global.shrink_height, c.height);
        EXPECT_EQ(g_global.jpeg_compress, c.quality);
        EXPECT_EQ(g_global.horizontal_items, 5U);
    }
}

TEST(Settings, WhatIsNoFileIsNeitherReadNorReplaced) {
    const test_support::temp_dir_t home;
    const std::string path = home / ".taloram";
    setenv("HOME", home.path().c_str(), 1);
    const taloram::global_t defaults;
    g_global = defaults;
    for (const char* device : {"/dev/zero", "", "/dev/null"}) {
        SCOPED_TRACE(device);
        ASSERT_EQ(*device == '\0' ? mkfifo(path.c_str(), 0600) : symlink(device, path.c_str()), 0);
        EXPECT_EQ(test_support::stderr_of([] { EXPECT_TRUE(taloram::loadini("", "taloram")); }),
                  path + ": can't be read, not a regular file\n");
        EXPECT_EQ(g_global.from, defaults.from);
        taloram::saveini("", "taloram");
        struct stat status {};
        EXPECT_TRUE(stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) << "it stays";
        ASSERT_EQ(unlink(path.c_str()), 0);
    }
}

TEST(Looks, AreLinesOfTheirFiles) {
    struct case_t {
        const char *text, *description, *line;  // no line: can't be used
    };
    const std::string long_text(60'001, 'x');
    const case_t cases[] = {
        {"", "", ""},
        {"<!-- One\nlook -->\n\n  <a>\r\n\t<!-- kept --> <b>\t\n", "One\nlook", "<a> <!-- kept --> <b>"},
        {"<!-- no end\n<a>", "", "<!-- no end <a>"},
        {"charset=UTF-8 lang ||= \"en\"", "", "charset=euc-jp lang ||= \"ja-JP\""},
        {long_text.c_str(), "", nullptr},
        {"a\x1b[2J", "", nullptr},
    };
    const test_support::temp_dir_t dir;
    setenv("LANG", "ja_JP.eucJP", 1);
    for (const case_t& c : cases) {
        SCOPED_TRACE(std::string(c.text).substr(0, 20));
        test_support::write_file(dir / "a.look.html", std::string(c.text));
        taloram::look_t look;
        EXPECT_EQ(!taloram::load_look(look, dir / "a.look.html"), c.line != nullptr);
        EXPECT_EQ(look.name, c.line == nullptr ? "" : "a.look");
        EXPECT_EQ(look.description, c.description);
        EXPECT_EQ(look.line, c.line == nullptr ? "" : c.line);
    }
    EXPECT_TRUE(taloram::installed_looks(dir / "none/").empty());
}

TEST(Looks, ThatComeWithTheProgramPassTheSettingsFile) {
    const test_support::temp_dir_t home;
    setenv("HOME", home.path().c_str(), 1);
    setenv("LANG", "", 1);
    const auto looks = taloram::installed_looks(TALORAM_DATA "/");
    ASSERT_EQ(looks.size(), 3U);
    EXPECT_EQ(looks[0].line, taloram::global_t().html_header);
    for (const taloram::look_t& look : looks) {
        SCOPED_TRACE(look.name);
        EXPECT_NE(look.description, "");
        EXPECT_TRUE(look.line.starts_with(taloram::global_t().html_header));
        // ASCII, for pages in any encoding; nothing from elsewhere; scripts only where they are what the look is about.
        EXPECT_TRUE(std::all_of(look.line.begin(), look.line.end(), [](char c) { return c >= ' ' && c <= '~'; }));
        for (const char* fetch : {"://", "url(", "@import", "src=", "<link"}) {
            EXPECT_EQ(look.line.find(fetch), std::string::npos) << fetch;
        }
        EXPECT_EQ(look.line.find("<script") != std::string::npos, look.name == "gallery");
        g_global.html_header = look.line;
        EXPECT_FALSE(taloram::save_settings(home / ".taloram"));
        g_global = taloram::global_t();
        EXPECT_FALSE(taloram::load_settings(home / ".taloram"));
        EXPECT_EQ(g_global.html_header, look.line);
    }
    g_global = taloram::global_t();
}

}  // namespace
