#include <gmock/gmock.h>

#include "album/pages/active_markup.h"
#include "album/pages/album_pages.h"
#include "album/pages/book_index.h"
#include "album/sizes/reduced_sizes.h"
#include "album/texts/comment_store.h"
#include "talolib/message.h"
#include "tests/album/album_fixture.h"

struct pages_test : album_test_t {
    // A page with marks for what all pages share, "|" for a line end and "'" for a double quote.
    static std::string page(const std::string& path) {
        std::string text = text_of(path);
        std::replace(text.begin(), text.end(), '\n', '|');
        std::replace(text.begin(), text.end(), '"', '\'');
        const size_t stamp = text.find("HTML Generated: ");
        text.erase(stamp, text.find(")|", stamp) + 2 - stamp);
        const std::pair<const char*, std::string> parts[] = {
            {"HEAD", "<HTML>|<HEAD>|\t<meta>|\t<title>T</title>|</HEAD>||<BODY>|\t<CENTER><h1>T</h1></CENTER>|"},
            {"END", "<hr>|\t<address>me</address>|<!-- hhmts start -->|<!-- hhmts end -->|</BODY>|</HTML>|"},
            {"FOOT", "<p><center><a href='../index.html'>UP</a></center>|END"}};
        for (const auto& [mark, part] : parts) {
            const size_t at = text.find(part);
            text = at == std::string::npos ? text : text.replace(at, part.size(), mark);
        }
        return text;
    }
};

TEST_F(pages_test, album) {
    const grouping_locale_t grouping;
    g_global.shrink_width = 1000;
    EXPECT_TRUE(savecommenttxt(album, "T", "in <b>", "out") && savephotocomment("1\n\n\n2\n3", album, "c.d.jpg"));
    for (const auto& [name, width] : {std::pair("a.jpg", 60U), {"b.JPG", 1200U}, {"c.d.jpg", 2400U}}) {
        put(original_path(album, name), make_jpeg({.width = width, .height = 16}));
        EXPECT_TRUE(shrink(album, {{name, 0}}, silent));
    }
    fs::resize_file(album + "/size0/b.JPG", 3 * 1024);
    fs::resize_file(album + "/size0/c.d.jpg", 2000 * 1024 + 1);
    fs::resize_file(album + "/size1/c.d.jpg", 1023);
    put(album + "/movie/m.mov", "");
    EXPECT_TRUE(makehtml(album, progress) && makehtmlzoom(album, progress));
    EXPECT_EQ((std::vector{1.0 / 3, 2.0 / 3, 1.0, 1.0 / 3, 2.0 / 3, 1.0}), steps);
    EXPECT_EQ("1+3\n", text_of(album + "/txt/count.txt"));
    EXPECT_EQ(
        "HEAD<br>in <b>||<UL>|\t<li>m.mov|\t<br><video controls>|\t<source src='movie/m.mov'>|\t</video>\t<p>|"
        "\t<li>a.jpg|\t<br><IMG SRC='size0/a.jpg' ALIGN='left'>|\t<br clear=all>|\t<p>||"
        "\t<li>b.JPG|\t<br><a href='size0/b.JPG'>1200x16 (3k)</a>|\t<br><a href='size0/b.JPG'>"
        "<IMG SRC='size1/b.JPG' SRCSET='size1/b.JPG 1x,size0/b.JPG 2x' ALIGN='left'>|\t<br clear=all>|\t<p>||"
        "\t<li>c.d.jpg|\t<br><a href='size0/c.d.jpg'>2400x16 (2001k)</a>|"
        "\t<br><a href='html/c.d_1.html'>1200x8 (1k)</a>|\t<br><a href='html/c.d_1.html'>"
        "<IMG SRC='size2/c.d.jpg' SRCSET='size2/c.d.jpg 1x,size1/c.d.jpg 2x' ALIGN='left'></a>|"
        "\t<br>1|\t<p>\t<p>2|\t<br>3|\t<br clear=all>|\t<p>||</UL>|<br>out|FOOT",
        page(album + "/index.html"));
    EXPECT_EQ(
        "HEAD<br>in <b>|<br>||"
        "<a href='size0/a.jpg'><IMG SRC='thumb/a.jpg' SRCSET='thumb/a.jpg 1x,size0/a.jpg 2x'>"
        "<a href='html/b_1.html'><IMG SRC='thumb/b.JPG' SRCSET='thumb/b.JPG 1x,size1/b.JPG 2x'></a>|"
        "<a href='html/c.d_2.html'><IMG SRC='thumb/c.d.jpg' SRCSET='thumb/c.d.jpg 1x,size2/c.d.jpg 2x'></a>|"
        "<br>out|FOOT",
        page(album + "/list.html"));
    EXPECT_EQ(
        "<HTML>|<HEAD>|\t<meta>|</HEAD>||<BODY>|<a href='../size0/c.d.jpg'><IMG SRC='../size1/c.d.jpg' "
        "SRCSET='../size1/c.d.jpg 1x,../size0/c.d.jpg 2x'></a>|END"
        "<HTML>|<HEAD>|\t<meta>|</HEAD>||<BODY>|<a href='c.d_1.html'><IMG SRC='../size2/c.d.jpg' "
        "SRCSET='../size2/c.d.jpg 1x,../size1/c.d.jpg 2x'></a>|END",
        page(album + "/html/c.d_1.html") + page(album + "/html/c.d_2.html"));
    EXPECT_EQ(3U, files_below(album + "/html").size());
    fs::remove(album + "/size0/b.JPG");
    EXPECT_EQ("false\n", outcome([&] { return makehtml(album, silent); }));
    fs::remove_all(album + "/thumb");
    fs::remove_all(album + "/movie");
    EXPECT_TRUE(makehtml(album, silent));
    EXPECT_EQ("HEAD<br>in <b>|<br>||<br>out|FOOT+0\n", page(album + "/list.html") + text_of(album + "/txt/count.txt"));
}

TEST_F(pages_test, book) {
    put(dir / "test.msg", std::string(21, '\n') + "title\ntext\n" + std::string(15, '\n') + "list\ndirectory\n" +
                              std::string(6, '\n') + "count\n");
    talolib::init_message((dir / "").c_str(), "test");
    const std::string book = dir / "book";
    put(book + "/a/txt/head.txt", "A\r\nA\r\nfirst\r\nsecond");
    put(book + "/a/txt/count.txt", "2+35\r\n");
    put(book + "/a/list.html", "");
    put(book + "/b/txt/head.txt", "B\nB\nwithout a line end");
    put(book + "/c/txt/count.txt", "+1\n");
    EXPECT_TRUE(savecommenttxt(book, "T", "in", "out") && makehtmlbook(book));
    EXPECT_EQ(
        "HEAD<br>in\r||<p><table>|\t<tr><th>directory<th>count<th>list<th>title<th>text|"
        "\t<tr><td>a<td>2+35<td><a href='a/list.html'>list</a> <td><a href='a/index.html'>A</a><td>first|"
        "\t<tr><td>b<td><td><td><a href='b/index.html'>B</a>|</table>|<br>out\r|FOOT",
        page(book + "/index.html"));
}

TEST_F(pages_test, nothing_is_written_from_what_can_not_be_read) {
    put(original_path(album, "p.jpg"), make_jpeg({.width = 60, .height = 16}));
    EXPECT_TRUE(shrink(album, {{"p.jpg", 0}}, silent));
    put(album + "/index.html", "old");
    for (const char* name : {"txt/head.txt", "txt/LAST.TXT", "txt/p.jpg.txt"}) {
        fs::create_directory(album + "/" + name);
        EXPECT_EQ("false\n" + album + "/" + name + ": comment text load failed, Is a directory\n",
                  outcome([&] { return makehtml(album, silent); }));
        fs::remove(album + "/" + name);
    }
    fs::remove_all(album + "/thumb");
    for (const char* name : {"movie", "thumb"}) {
        fs::create_symlink(name, album + "/" + name);
        EXPECT_EQ("false\n" + album + "/" + name + ": getfiles failed, Too many levels of symbolic links\n",
                  outcome([&] { return makehtml(album, silent); }));
        EXPECT_EQ("false\n", outcome([&] { return makehtmlzoom(album, silent); }));
        fs::remove(album + "/" + name);
    }
    const std::string book = dir.path(), page = book + "/index.html";
    put(page, "old");
    for (const char* name : {"album/txt/head.txt", "album/txt/count.txt", "txt/head.txt"}) {
        put(album + "/txt/head.txt", "A\nA\n");
        fs::remove(dir / name);
        fs::create_directories(dir / name);
        EXPECT_EQ("false\n" + dir / name + ": comment text load failed, Is a directory\n",
                  outcome([&] { return makehtmlbook(book); }));
        fs::remove(dir / name);
    }
    EXPECT_EQ("oldold", text_of(album + "/index.html") + text_of(page));
}

TEST_F(pages_test, links_are_followed_inside_the_album_only) {
    put(original_path(album, "p.jpg"), make_jpeg({.width = 120, .height = 16}));
    EXPECT_TRUE(shrink(album, {{"p.jpg", 0}}, silent));
    for (const char* name : {"index.html", "list.html", "txt/count.txt", "html/p_1.html"}) {
        const std::string path = album + "/" + name, inside = album + "/www/" + fs::path(name).filename().string();
        for (const std::string& target : {dir / "outside", inside}) {
            fs::create_directories(fs::path(path).parent_path());
            fs::create_directory(album + "/www");
            fs::remove(path);
            fs::create_symlink(target, path);
            EXPECT_TRUE(makehtml(album, silent) && makehtmlzoom(album, silent)) << name;
            EXPECT_TRUE(fs::is_symlink(path) == (target == inside) && fs::is_regular_file(path)) << target;
        }
    }
    EXPECT_FALSE(fs::exists(dir / "outside"));
    fs::create_symlink("../outside.html", dir / "index.html");
    EXPECT_TRUE(makehtmlbook(dir.path()) && !fs::is_symlink(dir / "index.html"));
}

TEST_F(pages_test, texts_that_run_programs_are_named) {
    const auto exif = exif_builder_t().text(exif_builder_t::ifd0, 0x0110, "<ScRiPt>").app1();
    put(original_path(album, "p.jpg"), make_jpeg({.width = 60, .height = 16, .segments = {{0xE1, exif}}}));
    EXPECT_TRUE(shrink(album, {{"p.jpg", 0}}, silent));
    put(album + "/txt/head.txt", "T\nT\n<a href='JavaScript:x'>");
    put(album + "/txt/last.txt", "<b>1 < 2</b> <p on=1> onset = 3 <a one='1'");
    const std::string end = ": holds markup that runs a program in the browser; the pages show it as it is.\n";
    EXPECT_EQ(
        "true\n" + album + "/txt/head.txt" + end + album + "/txt/last.txt" + end + original_path(album, "p.jpg") + end,
        outcome([&] { return makehtml(album, silent); }));
    EXPECT_THAT(page(album + "/index.html"), testing::HasSubstr("<ScRiPt>"));
    const std::pair<const char*, bool> cases[] = {
        {"<img src=x\nOnError = 'x'>", true},
        {"<svg/onload=x>", true},
        {"<a b='c'onclick=x", true},
        {"< a onload=x>", false},
        {"<a> onload=x", false},
        {"<a on=x>", false},
        {"<a once>", false},
        {"<", false},
        {"", false},
        {"<b><i><u onload=1>", true},
    };
    for (const auto& [text, is_active] : cases) {
        EXPECT_EQ(is_active, is_active_markup(text)) << text;
    }
}
