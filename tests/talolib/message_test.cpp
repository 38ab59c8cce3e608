#include "talolib/message.h"

#include <gtest/gtest.h>
#include <langinfo.h>
#include <unistd.h>

#include <clocale>

#include "libutils/files/path.h"
#include "talolib/option.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

namespace {

TEST(Catalogue, EveryLineEndMakesALine) {
    struct case_t {
        const char* name;
        std::string file;
        std::vector<std::string> lines;
    };
    const case_t cases[] = {
        {"LF", "a\nb\n", {"a", "b"}},         {"CR LF", "a\r\n\r\nb\r\n", {"a", "", "b"}},
        {"no last LF", "a\nb", {"a"}},        {"lone CR", "a\rb\nc\n", {"a", "b"}},
        {"more LFs than walked", "\n", {""}}, {"empty", "", {}},
    };
    for (const case_t& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<char> buffer(c.file.begin(), c.file.end());
        std::vector<const char*> table;
        talolib::make_message_table(table, buffer, talolib::count_lines(buffer));
        EXPECT_EQ(std::vector<std::string>(table.begin(), table.end()), c.lines);
    }
}

TEST(Catalogue, LocalesAndPlaces) {
    const test_support::temp_dir_t dir;
    const std::string name = "no-such-program";
    setenv("LANG", "xx_XX.UTF-8", 1);
    EXPECT_EQ(test_support::stderr_of([&] { EXPECT_EQ(talolib::init_message((dir / "").c_str(), name.c_str()), ""); }),
              "/usr/site/share/talolib/no-such-program.msg: can't load message file.\n");
    EXPECT_STREQ(talolib::getmsg(0), "message not loaded.");
    test_support::write_file(dir / (name + ".msg"), std::string("plain\n"));
    EXPECT_EQ(talolib::init_message((dir / "").c_str(), name.c_str()), dir / (name + ".msg"));
    EXPECT_STREQ(talolib::getmsg(0), "plain");
    test_support::write_file(dir / (name + ".xx_XX.UTF-8.msg"), std::string("local\nsecond\n"));
    EXPECT_EQ(talolib::init_message((dir / "").c_str(), name.c_str()), dir / (name + ".xx_XX.UTF-8.msg"));
    EXPECT_EQ(talolib::make_title(talolib::getmsg(0), talolib::getmsg(1)), "local - second");
    EXPECT_STREQ(talolib::getmsg(2), "message not loaded.");
    unsetenv("LANG");
    talolib::g_option[talolib::option_trace] = 1;
    const std::string path = dir / (name + ".msg");
    EXPECT_EQ(test_support::stderr_of([&] { talolib::init_message((dir / "").c_str(), name.c_str()); }),
              "init_message() entering.\npath: " + path + "\ninit_message() leaving.\n");
    talolib::g_option[talolib::option_trace] = 0;
}

TEST(Catalogue, CharactersAreUtf8UnlessTheLocaleNamesOthers) {
    struct case_t {
        const char *lang, *charset;
    };
    for (const case_t& c : {case_t{"", "UTF-8"},
                            {"C", "UTF-8"},
                            {"POSIX", "UTF-8"},
                            {"xx_XX.utf8", "UTF-8"},
                            {"xx_XX", "UTF-8"},
                            {"xx_XX.eucJP", "ANSI_X3.4-1968"}}) {
        SCOPED_TRACE(c.lang);
        std::setlocale(LC_ALL, "C");
        setenv("LANG", c.lang, 1);
        static_cast<void>(test_support::stderr_of([] { talolib::init_message("/", "no-such-program"); }));
        EXPECT_STREQ(nl_langinfo(CODESET), c.charset);
    }
    unsetenv("LANG");
    std::setlocale(LC_ALL, "C");
}

}  // namespace
