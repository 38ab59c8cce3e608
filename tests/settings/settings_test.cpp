#include "settings/settings.h"

#include <gtest/gtest.h>

#include "settings/settings_file.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

using taloram::g_global;

namespace {

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
    settings.shrink_width = 12800;
    settings.jpeg_compress = 7;
    g_global = settings;
    {
        const test_support::grouping_locale_t grouping;
        taloram::saveini("", "/somewhere/taloram.bin");
    }
    const auto file = test_support::read_file(home / ".taloram");
    EXPECT_EQ(std::string(file.begin(), file.end()),
              "from= a=b \r\nalbum=\r\nshrink_size=12800,768\r\njpeg_compress=7\r\nhorizontal_items=5\r\nhtml_header=" +
                  settings.html_header + "\r\nhtml_address=" + settings.html_address + "\r\n");
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
        {"shrink_size=", 0, 2, 1, ""},
        {"jpeg_compress=010\r", 1, 2, 8, ""},
        {"jpeg_compress=fine", 1, 2, 0, ""},
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
        EXPECT_EQ(test_support::stderr_of([] { EXPECT_TRUE(taloram::loadini("", "taloram")); }), c.error);
        EXPECT_EQ(g_global.shrink_width, c.width);
        EXPECT_EQ(g_global.shrink_height, c.height);
        EXPECT_EQ(g_global.jpeg_compress, c.quality);
    }
}

}  // namespace
