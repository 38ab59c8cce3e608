#include <gmock/gmock.h>
#include <sys/stat.h>

#include "album/pages/album_pages.h"
#include "album/pages/book_index.h"
#include "album/publish/movie_place.h"
#include "album/publish/page_links.h"
#include "album/publish/public_photo.h"
#include "album/publish/publish.h"
#include "album/publish/published_copy.h"
#include "libgr/exif/app1_marker.h"
#include "tests/album/album_fixture.h"

namespace {

using namespace std::string_literals;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

blob_t blob(const std::string& text) {
    return {text.begin(), text.end()};
}

// Everything from the first SOS on.
blob_t coded(const blob_t& jpeg) {
    size_t at = 2;
    while (jpeg[at + 1] != 0xDA) {
        at += 2U + (jpeg[at + 2] << 8 | jpeg[at + 3]);
    }
    return {jpeg.begin() + static_cast<long>(at), jpeg.end()};
}

// "" when the photograph is not to be published.
std::string public_bytes(const blob_t& jpeg) {
    libutils::bytes_t view;
    public_photo_t photo;
    std::string out;
    EXPECT_TRUE(view.resize(jpeg.size()));
    std::copy(jpeg.begin(), jpeg.end(), view.begin());
    if (photo.read(view)) {
        for (const std::string_view part : photo.parts()) {
            out += part;
        }
    }
    return out;
}

TEST(public_photo_test, keeps_the_picture_and_says_whose_it_is) {
    exif_builder_t exif(true);
    exif.text(exif_builder_t::ifd0, 0x010E, "description").shorts(exif_builder_t::ifd0, 0x0112, {6});
    exif.text(exif_builder_t::ifd0, 0x013B, "Anna").text(exif_builder_t::ifd0, 0x8298, "(C) Anna\0edited"s);
    exif.text(exif_builder_t::exif, 0xA431, "serial").text(exif_builder_t::exif, 0xA430, "owner");
    exif.bytes(exif_builder_t::exif, 0x927C, blob("note")).thumbnail(make_jpeg({.width = 16, .height = 16}));
    const std::string jfif = "JFIF\0\1\2\0\0\1\0\1"s;
    const std::string profile = "ICC_PROFILE\0\1\1profile"s;
    const photo_t shot{.progressive = true,
                       .segments = {{0xE0, blob(jfif + "\2\1" + "preview pixels")},
                                    {0xE0, blob("JFXX\0\x10preview"s)},
                                    {0xE1, blob("http://ns.adobe.com/xap/1.0/\0place"s)},
                                    {0xE1, exif.app1()},
                                    {0xE1, exif.app1()},
                                    {0xE2, blob("MPF\0other pictures"s)},
                                    {0xE2, blob(profile)},
                                    {0xED, blob("Photoshop 3.0\0place"s)},
                                    {0xEE, blob("Adobe\0\x64\0\0\0\0\1hidden"s)},
                                    {0xFE, blob("comment")}}};
    blob_t jpeg = make_jpeg(shot);
    const blob_t scans = coded(jpeg);
    const pixels_t pixels = decode(jpeg);
    // Between two scans, and behind the end.
    const std::string between = "\xFF\xE1\0\x08secret\xFF\xFE\0\x04no"s;
    const auto first_scan = jpeg.end() - static_cast<long>(scans.size());
    const std::string table = "\xFF\xC4";
    const auto next = std::search(first_scan, jpeg.end(), table.begin(), table.end(),
                                  [](unsigned char a, char b) { return a == static_cast<unsigned char>(b); });
    ASSERT_NE(next, jpeg.end());
    jpeg.insert(next, between.begin(), between.end());
    const blob_t preview = make_jpeg({});
    jpeg.insert(jpeg.end(), preview.begin(), preview.end());

    const std::string got = public_bytes(jpeg);
    for (const char* secret : {"description", "serial", "owner", "note", "place", "preview", "pictures", "hidden",
                               "comment", "secret", "MPF", "JFXX"}) {
        EXPECT_THAT(got, Not(HasSubstr(secret)));
    }
    EXPECT_THAT(got, AllOf(HasSubstr(jfif + "\0\0\xFF"s), HasSubstr(profile), HasSubstr("Adobe\0\x64\0\0\0\0\1\xFF"s)));
    EXPECT_EQ(coded(blob(got)), scans);
    EXPECT_EQ(decode(blob(got)).bytes, pixels.bytes);
    EXPECT_EQ(public_bytes(blob(got)), got);

    const size_t start = got.find("Exif\0\0"s);
    ASSERT_NE(start, std::string::npos);
    EXPECT_EQ(got.find("Exif", start + 1), std::string::npos);
    const blob_t segment = blob(got.substr(start));
    libgr::app1_marker_t app1;
    libutils::bytes_t view;
    ASSERT_TRUE(view.resize(segment.size()));
    std::copy(segment.begin(), segment.end(), view.begin());
    app1.set_app1_buffer(view);
    ASSERT_TRUE(app1.parse());
    EXPECT_EQ(app1.tiff_header.tag_0th_ifd.orientation.front(), 6);
    EXPECT_THAT(got, AllOf(HasSubstr("Anna\0"s), HasSubstr("(C) Anna\0"s)));
}

TEST(public_photo_test, tells_damage_from_segments) {
    const blob_t whole = make_jpeg({.segments = {{0xFE, blob("comment")}}});
    const blob_t scan = coded(whole);
    const auto with = [&](const std::string& in_scan) {
        blob_t jpeg = whole;
        jpeg.insert(jpeg.end() - 20, in_scan.begin(), in_scan.end());
        return jpeg;
    };
    // What looks like a marker in a scan, and leads to no other, is kept.
    for (const std::string& damage : {"\xFF\xE1\0\x04xxxx"s, "\xFF\xE1\xFF\xFFx"s, "\xFF\xD8"s, "\xFF\xD3\xFF\x01"s}) {
        EXPECT_EQ(coded(blob(public_bytes(with(damage)))), coded(with(damage)));
    }
    const blob_t cut(whole.begin(), whole.end() - 2);
    EXPECT_EQ(coded(blob(public_bytes(cut))), coded(cut));
    const size_t header = whole.size() - scan.size();
    const blob_t unread[] = {{},
                             blob("no photograph"),
                             {whole.begin(), whole.begin() + 2},
                             {whole.begin(), whole.begin() + 8},
                             {whole.begin(), whole.begin() + static_cast<long>(header)},
                             blob("\xFF\xD8\xFF\xE1\0\1"s),
                             blob("\xFF\xD8\xFF\xD9"s)};
    for (const blob_t& jpeg : unread) {
        EXPECT_EQ(public_bytes(jpeg), "");
    }
}

std::string box(const std::string& type, const std::string& contents) {
    return "\0\0\0"s + static_cast<char>(8 + contents.size()) + type + contents;
}

TEST(movie_place_test, is_found_where_cameras_write_it) {
    const std::string xyz = box("\xA9xyz", "\0\x08\x15\xC7+48+011/"s);
    const std::string key = "\0\0\0\x2Cmdtacom.apple.quicktime.location.ISO6709"s;
    const std::string keys = box("keys", "\0\0\0\0\0\0\0\2\0\0\0\x0Cmdtamake"s + key);
    struct case_t {
        const char* name;
        std::string movie;
        bool has_place;
    };
    const case_t cases[] = {
        {"user data", box("ftyp", "qt  ") + box("moov", box("mvhd", "x") + box("udta", xyz)), true},
        {"behind 64 bits of size", "\0\0\0\1mdat\0\0\0\0\0\0\0\x12xx"s + box("moov", box("udta", xyz)), true},
        {"3GPP", box("moov", box("trak", box("udta", box("loci", "x")))), true},
        {"QuickTime keys", box("moov", box("meta", box("hdlr", "x") + keys)), true},
        {"ISO keys", box("moov", box("meta", "\0\0\0\0"s + box("hdlr", "x") + keys)), true},
        {"cut", (box("moov", box("udta", xyz))).substr(0, 30), true},
        {"empty text", box("moov", box("udta", box("\xA9xyz", "\0\0\x15\xC7"s))), false},
        {"in the pictures", box("mdat", box("udta", xyz)), false},
        {"other keys", box("moov", box("meta", box("hdlr", "x") + keys.substr(0, 28))), false},
        {"too small a size", box("moov", "\0\0\0\4udta"s + box("udta", xyz)), false},
        {"nothing", "", false},
        {"no boxes", "\0\0\1\xBA movie of another kind"s, false},
    };
    for (const case_t& c : cases) {
        const blob_t movie = blob(c.movie);
        EXPECT_EQ(names_a_place(movie), c.has_place) << c.name;
    }
}

TEST(page_links_test, are_those_that_a_browser_takes) {
    EXPECT_THAT(links_of_page("<a href=\"a b\"><IMG SRC='q\"'SRCSET=\"x 1x,y 2x\"><source src = z\n><a\nHREF=u>"),
                ElementsAre("a b", "q\"", "x", "y", "z", "u"));
    EXPECT_THAT(links_of_page("<!-- <a href=a> --><script>'<a href=b>'</script><p title='<a href=c>'></a href=d>"
                              "<a data-href=e hrefx=f><br href><style>x</style><link href=g/><a href=h"),
                ElementsAre("", "g/"));
    EXPECT_THAT(
        links_of_page("<img srcset=',a, b  1.5x , c 10w'><img srcset='d e 1x,f g 2x'><a href='&amp;&#38;&x;&'>"),
        ElementsAre("a", "b", "c", "&&&x;&"));
    EXPECT_THAT(links_of_page("<img srcset='size1/a b.jpg 1x,size0/a b.jpg 2x'><"), ElementsAre());
    struct case_t {
        const char *page, *link, *target;
    };
    constexpr const char* nothing = "nothing";
    for (const case_t& c : {case_t{"html/a.html", "../size0/a%20b.jpg", "size0/a b.jpg"},
                            {"index.html", "size0/100%.jpg", "size0/100%.jpg"},
                            {"index.html", " ./a.html#x\n", "a.html"},
                            {"d/index.html", "a?b=c", "d/a"},
                            {"d/index.html", "../../../x", "../../x"},
                            {"d/index.html", "../", ""},
                            {"index.html", "#x", nothing},
                            {"index.html", "", nothing},
                            {"index.html", "/a", nothing},
                            {"index.html", "//a.b/c", nothing},
                            {"index.html", "mailto:a@b", nothing}}) {
        EXPECT_EQ(resolve_link(c.page, c.link).value_or(nothing), c.target) << c.link;
    }
}

// A book with an album of one photograph in two sizes and a movie.
struct publish_test : album_test_t {
    publish_test() {
        put(album + "/original/p.jpg", photo);
        for (const char* path : {"/size0/p.jpg", "/size1/p.jpg", "/thumb/p.jpg"}) {
            put(album + path, photo);
        }
        put(album + "/movie/m.mov", "movie"s);
        put(album + "/txt/head.txt", "Album\nAlbum\nText\n<img src=../look.css onerror=x>\n"s);
        put(dir / "txt/head.txt", "Book\nBook\n"s);
        put(dir / "look.css", "style"s);
        put(album + "/size1/unlinked.jpg", photo);
        write_pages();
        fs::create_directory(site);
    }
    void write_pages() {
        EXPECT_TRUE(makehtml(album, silent) && makehtmlzoom(album, silent) && makehtmlbook(dir.path()));
    }

    // Result, how many files are outdated, and standard error.
    std::string publish_to(const std::string& source, const std::string& name, bool prune = false, bool keep = false) {
        published_t result;
        const std::string text = outcome([&] {
            result = publish({source, copies / name, keep, prune}, progress);
            return result.is_complete;
        });
        return std::to_string(result.outdated) + " " + text;
    }
    // What the copy has, and the inode numbers of it, by which a file shows that was written again.
    std::string names(const std::string& name) const {
        std::string text;
        for (const std::string& path : files_below(copies / name)) {
            text += path.substr((copies / name).size() + 1) + " ";
        }
        return text;
    }
    std::vector<ino_t> inodes(const std::string& name) const {
        std::vector<ino_t> numbers;
        for (const std::string& path : files_below(copies / name)) {
            struct stat status {};
            EXPECT_EQ(lstat(path.c_str(), &status), 0);
            numbers.push_back(status.st_ino);
        }
        return numbers;
    }

    const blob_t photo = make_camera_jpeg({.width = 100, .height = 60}, 6, true);
    const temp_dir_t copies;
    const std::string site = copies / "site";
};

TEST_F(publish_test, readers_get_what_pages_link_to_and_only_once) {
    const std::string first = publish_to(dir.path(), "site");
    EXPECT_THAT(first, AllOf(testing::StartsWith("0 true\n"), HasSubstr("head.txt: holds markup")));
    const std::vector<ino_t> before = inodes("site");
    EXPECT_EQ(names("site"),
              ".taloram-published album/.taloram-published album/html/p_1.html album/index.html album/list.html "
              "album/movie/m.mov album/size0/p.jpg album/size1/p.jpg album/thumb/p.jpg index.html look.css ");
    EXPECT_EQ(text_of(site + "/album/index.html"), text_of(album + "/index.html"));
    EXPECT_EQ(coded(read_file(site + "/album/size0/p.jpg")), coded(photo));
    EXPECT_LT(read_file(site + "/album/size0/p.jpg").size(), photo.size());
    EXPECT_THAT(text_of(site + "/index.html"), Not(HasSubstr(">UP<")));
    EXPECT_EQ(publish_to(dir.path(), "site"), first);
    EXPECT_EQ(inodes("site"), before);

    // One that lies below a page keeps the line, and takes no file that is not linked to.
    EXPECT_THAT(publish_to(album, "site/album"), AllOf(testing::StartsWith("0 true\n")));
    EXPECT_EQ(publish_to(dir.path(), "whole", false, true).substr(0, 2), "0 ");
    EXPECT_EQ(read_file(copies / "whole/album/size0/p.jpg"), photo);
    EXPECT_EQ(publish_to(dir.path(), "whole").substr(0, 2), "0 ");
    EXPECT_EQ(read_file(copies / "whole/album/size0/p.jpg"), read_file(site + "/album/size0/p.jpg"));
}

TEST_F(publish_test, what_is_gone_goes_and_what_others_put_there_stays) {
    EXPECT_THAT(publish_to(dir.path(), "site"), HasSubstr("0 true"));
    put(site + "/mine.html", "mine"s);
    put(site + "/album/size1/mine.jpg", "mine"s);
    for (const char* path : {"/original/p.jpg", "/size1/p.jpg", "/size0/p.jpg", "/thumb/p.jpg"}) {
        fs::remove(album + path);
    }
    write_pages();
    EXPECT_THAT(publish_to(dir.path(), "site"), HasSubstr("4 true"));
    EXPECT_TRUE(fs::exists(site + "/album/thumb/p.jpg"));
    EXPECT_THAT(publish_to(dir.path(), "site", true), HasSubstr("0 true"));
    EXPECT_EQ(names("site"),
              ".taloram-published album/.taloram-published album/index.html album/list.html album/movie/m.mov "
              "album/size1/mine.jpg index.html look.css mine.html ");
    fs::remove_all(album);
    EXPECT_TRUE(makehtmlbook(dir.path()));
    EXPECT_THAT(publish_to(dir.path(), "site"), HasSubstr("4 true"));
    EXPECT_THAT(publish_to(dir.path(), "site", true), HasSubstr("0 true"));
    EXPECT_EQ(names("site"), ".taloram-published album/size1/mine.jpg index.html mine.html ");
}

TEST_F(publish_test, names_what_is_missing_or_broken) {
    EXPECT_THAT(publish_to(dir.path(), "site", false, true), HasSubstr("0 true"));
    fs::remove(album + "/size1/p.jpg");
    put(album + "/size0/p.jpg", "\xFF\xD8 broken"s);
    // An older copy is no substitute; of a broken photograph it could be the one with all its data.
    for (const bool prune : {false, true}) {
        EXPECT_THAT(publish_to(dir.path(), "site", prune),
                    AllOf(HasSubstr("0 false"), HasSubstr("album/size0/p.jpg: not published, its segments"),
                          HasSubstr("site/album/html/p_1.html: leads to album/size1/p.jpg, which is not there.\n"),
                          HasSubstr("leads to album/size0/p.jpg, which")));
        EXPECT_TRUE(fs::exists(site + "/album/size1/p.jpg"));
        EXPECT_FALSE(fs::exists(site + "/album/size0/p.jpg"));
    }
    fs::remove(album + "/index.html");
    EXPECT_THAT(publish_to(dir.path(), "site", true), HasSubstr("album/index.html: No such file"));
    EXPECT_TRUE(fs::exists(site + "/album/index.html"));
    fs::create_directory(album + "/.taloram-turned-1-1-1");
    EXPECT_THAT(publish_to(album, "other"), HasSubstr("turned only in part"));
}

TEST_F(publish_test, writes_through_no_link) {
    EXPECT_THAT(publish_to(dir.path(), "site"), HasSubstr("0 true"));
    const std::string elsewhere = dir / "elsewhere";
    fs::create_directory(elsewhere);
    put(elsewhere + "/file", "of the user"s);
    fs::remove(site + "/album/list.html");
    fs::create_symlink(elsewhere + "/file", site + "/album/list.html");
    EXPECT_THAT(publish_to(dir.path(), "site"), HasSubstr("0 true"));
    EXPECT_EQ(text_of(elsewhere + "/file"), "of the user");
    EXPECT_EQ(text_of(site + "/album/list.html"), text_of(album + "/list.html"));
    fs::remove_all(site + "/album/size1");
    fs::create_symlink(elsewhere, site + "/album/size1");
    EXPECT_THAT(publish_to(dir.path(), "site", true),
                AllOf(HasSubstr("0 false"), HasSubstr("album/size1/p.jpg: a link")));
    EXPECT_EQ(files_below(elsewhere).size(), 1U);
    // A record that somebody else wrote leads nowhere.
    put(site + "/.taloram-published", text_of(site + "/.taloram-published") + "../victim\nalbum/../../victim\n");
    put(copies / "victim", "x"s);
    fs::remove(site + "/album/size1");
    EXPECT_THAT(publish_to(dir.path(), "site", true), HasSubstr("0 true"));
    EXPECT_TRUE(fs::exists(copies / "victim"));
}

TEST_F(publish_test, refuses_directories_that_are_not_its_own) {
    put(copies / "full/file", "x"s);
    put(copies / "file", "x"s);
    put(copies / "another/original/x.jpg", photo);
    put(copies / "book/txt/head.txt", "x"s);
    put(copies / "marked/.taloram-published", "something else"s);
    fs::create_directory_symlink(album, copies / "link");
    fs::create_directories(copies / "disk");
    fs::remove_all(album + "/movie");
    fs::create_directory_symlink(copies / "disk", album + "/movie");
    struct case_t {
        std::string directory;
        const char* reason;
    };
    for (const case_t& c : {case_t{"", "no name"},
                            {copies / "full", "neither empty"},
                            {copies / "file", "not a directory"},
                            {copies / "none/new", "no directory above"},
                            {album, "in each other"},
                            {album + "/new", "in each other"},
                            {dir.path(), "in each other"},
                            {copies / "link/new", "in each other"},
                            {copies / "disk", "in each other"},
                            {copies / "disk/new", "in each other"},
                            {copies / "another", "an album or book"},
                            {copies / "another/size0", "an album or book"},
                            {copies / "another/original/new", "an album or book"},
                            {copies / "book", "an album or book"},
                            {copies / "marked", "neither empty"},
                            {site, ""},
                            {copies / "new", ""}}) {
        SCOPED_TRACE(c.directory);
        const std::string reason = unfit_copy({album, c.directory});
        EXPECT_THAT(reason, HasSubstr(c.reason));
        EXPECT_EQ(reason.empty(), std::string(c.reason).empty());
    }
}

}  // namespace
