#include "libutils/text/text.h"

#include <gmock/gmock.h>

#include <clocale>
#include <sstream>

#include "libutils/files/path.h"

using testing::ElementsAre;

namespace {

TEST(Paths, Components) {
    struct case_t {
        const char *path, *base, *dir, *file;
    };
    constexpr case_t cases[] = {
        {"a/b/c.jpg", "c", "a/b/", "c.jpg"},
        {"a/b.c/d", "d", "a/b.c/", "d"},
        {"x.tar.gz", "x.tar", "", "x.tar.gz"},
        {".profile", "", "", ".profile"},
        {"a\\b/c", "c", "a\\b/", "c"},
        {"a\\b.txt", "b", "a\\", "b.txt"},
        {"", "", "", ""},
        {"/x", "x", "/", "x"},
        {"\xe5\x86\x99/\xe7\x9c\x9f.jpg", "\xe7\x9c\x9f", "\xe5\x86\x99/", "\xe7\x9c\x9f.jpg"},
        {"\xff/b\xfe.c", "b\xfe", "\xff/", "b\xfe.c"},
    };
    for (const char* locale : {"C", "C.UTF-8"}) {
        ASSERT_NE(std::setlocale(LC_CTYPE, locale), nullptr);
        for (const case_t& c : cases) {
            SCOPED_TRACE(testing::Message() << c.path << " in " << locale);
            EXPECT_EQ(libutils::basename(std::string(c.path)), c.base);
            EXPECT_EQ(libutils::dirname(std::string(c.path)), c.dir);
            EXPECT_EQ(libutils::filename(c.path), c.file);
            EXPECT_EQ(libutils::baseptr(c.path), std::string(c.file));
            EXPECT_EQ(libutils::delimconvert(c.path), c.path);
        }
    }
    char buffer[4] = "???";
    EXPECT_EQ(libutils::basename(buffer, "dir/\xe5\x86\x99\xe5\x86\x99.jpg", 4), 3U) << "cut at a whole character";
    EXPECT_STREQ(buffer, "\xe5\x86\x99");
    std::setlocale(LC_CTYPE, "C");
}

TEST(Paths, SplitPartsFitTheirArrays) {
    libutils::splitpath_t parts;
    libutils::split(parts, "c:dir/sub/name.tar.gz");
    EXPECT_STREQ(parts.drive, "c:");
    EXPECT_STREQ(parts.directory, "dir/sub/");
    EXPECT_STREQ(parts.filename, "name.tar");
    EXPECT_STREQ(parts.extension, ".gz");
    char joined[4 * libutils::splitpath_t::part_size];
    libutils::concat(joined, parts);
    EXPECT_STREQ(joined, "c:dir/sub/name.tar.gz");
    libutils::split(parts, (std::string(3000, 'n') + "." + std::string(1023, 'e')).c_str());
    EXPECT_EQ(std::string(parts.filename), std::string(1023, 'n'));
    EXPECT_EQ(std::string(parts.extension), "." + std::string(1022, 'e'));
}

TEST(Paths, Extensions) {
    EXPECT_EQ(libutils::extcasecmp("IMG_0001.JPG", ".jpg"), 0);
    EXPECT_EQ(libutils::extcasecmp("a", ".jpg"), -1);
    EXPECT_NE(libutils::extcasecmp("a.jpeg", ".jpg"), 0);
    EXPECT_NE(libutils::extcasecmp("ajpg", ".jpg"), 0);
}

TEST(Text, ChopsAndTokens) {
    struct case_t {
        std::string text, chopped, chopped2;
    };
    const case_t cases[] = {{"line\r\n\r\n", "line", "line"},
                            {"text \t\r\n", "text \t", "text"},
                            {std::string("a\0 \0", 4), std::string("a\0 \0", 4), "a"},
                            {"\r\n", "", ""},
                            {" \r\n", " ", ""},
                            {"a b", "a b", "a b"}};
    for (const case_t& c : cases) {
        SCOPED_TRACE(c.text);
        std::string text = c.text;
        libutils::chop(text);
        EXPECT_EQ(text, c.chopped);
        text = c.text;
        libutils::chop2(text);
        EXPECT_EQ(text, c.chopped2);
    }
    std::list<std::string> tokens = {"kept"};
    libutils::separate_token(tokens, "a::b:", ":");
    EXPECT_THAT(tokens, ElementsAre("kept", "a", "", "b"));
    tokens.clear();
    libutils::separate_token(tokens, "", ":");
    libutils::separate_token(tokens, ":a;b", ":;");
    EXPECT_THAT(tokens, ElementsAre("", "a", "b"));
    std::string joined;
    libutils::concatenate_token(joined, tokens, ", ");
    EXPECT_EQ(joined, ", a, b");
    std::pair<std::string, std::string> pair{"old", "old"};
    EXPECT_FALSE(libutils::separate_first_token(pair, "none", '='));
    EXPECT_EQ(pair.first, "old");
    EXPECT_TRUE(libutils::separate_first_token(pair, "key=value=x", '='));
    EXPECT_EQ(pair, (std::pair<std::string, std::string>("key", "value=x")));
}

TEST(Text, ValuesStayOnTheirLine) {
    EXPECT_EQ(libutils::on_one_line("a\r\nb\nc\rd\r\n"), "a b c d");
    EXPECT_EQ(libutils::on_one_line("\n\na"), "  a");
}

// In a locale with a dotted i, or of one byte a letter, the system's comparison differs.
TEST(Text, OnlyAsciiLettersHaveTwoCases) {
    for (const char* locale : {"C", "tr_TR.UTF-8", "de_DE.ISO-8859-1"}) {
        std::setlocale(LC_CTYPE, locale);  // unless the system doesn't have it
        EXPECT_TRUE(libutils::begins_with_nocase("RICOH Imaging", "Ricoh"));
        EXPECT_FALSE(libutils::begins_with_nocase("Ric", "Ricoh"));
        EXPECT_FALSE(libutils::equals_nocase("\xC4", "\xE4"));
        EXPECT_FALSE(libutils::equals_nocase("ab", "a"));
    }
    std::setlocale(LC_CTYPE, "C");
}

TEST(Text, StreamHelpers) {
    std::ostringstream out;
    {
        const libutils::keepflag keep(out);
        out << std::hex << 255;
    }
    out << 255 << libutils::putcn('-', 3) << libutils::putn("abcdef", 2) << libutils::putspace(1) << "|";
    EXPECT_EQ(out.str(), "ff255---ab |");
}

}  // namespace
