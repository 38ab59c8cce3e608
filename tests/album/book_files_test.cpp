#include "album/book_files.h"

#include <gmock/gmock.h>

#include "album/day_name.h"
#include "album/equal_files.h"
#include "tests/album/album_fixture.h"

using testing::ElementsAre;

namespace {

struct book_files_test : album_test_t {
    std::vector<std::string> like(const std::string& name) {
        std::vector<std::string> found;
        for (const size_t number : contents.like(card + "/" + name, fs::file_size(card + "/" + name))) {
            found.push_back(fs::relative(files[number].path(), dir.path()).string());
        }
        return found;
    }

    std::vector<book_file_t> files;
    equal_files_t contents{[this](size_t number) { return files[number].path(); }};
};

TEST_F(book_files_test, finds_contents_under_any_name) {
    const std::string photo(10000, 'p');
    std::string middle = photo;
    middle[5000] = 'x';
    put(album + "/original/a.jpg", photo);
    put(album + "/movie/m.mov", middle);
    put(album + "/txt/raw.cr2", photo.substr(1) + "x");
    put(album + "/original/empty.jpg", std::string());
    fs::create_symlink("a.jpg", album + "/original/link.jpg");
    put(card + "/1.jpg", photo);
    put(card + "/2.jpg", std::string("short"));
    put(dir / "book/nested/deep/original/b.jpg", photo);
    ASSERT_TRUE(list_book_files(files, dir.path()));
    EXPECT_EQ(files.size(), 4U);
    for (const book_file_t& file : files) {
        contents.add(file.length);
    }
    EXPECT_THAT(like("1.jpg"),
                ElementsAre("album/original/a.jpg", "album/movie/m.mov", "book/nested/deep/original/b.jpg"));
    EXPECT_THAT(like("2.jpg"), ElementsAre());
    fs::create_directory_symlink("movie", album + "/movie/loop");
    fs::remove_all(album + "/txt");
    fs::create_symlink("txt", album + "/txt");
    EXPECT_EQ(outcome([&] { return list_book_files(files, dir.path()); }),
              "false\n" + album + "/txt: getfiles failed, Too many levels of symbolic links\n");
}

TEST_F(book_files_test, knows_the_day) {
    for (const auto& [text, name] :
         std::vector<std::pair<std::string, std::string>>{{"2026:11:21 10:20:30", "20261121"},
                                                          {"0999-02-28", "09990228"},
                                                          {"2023:02:29 10:20:30", ""},
                                                          {"0000:00:00 00:00:00", ""},
                                                          {"    :  :  ", ""},
                                                          {"2026:11:-1", ""},
                                                          {"2026:11:2", ""}}) {
        const std::optional<day_t> day = read_exif_day(text);
        EXPECT_EQ(day ? day_name(*day) : "", name) << text;
    }
    exif_builder_t camera;
    camera.text(exif_builder_t::exif, 0x9003, "2026:11:21 23:59:59");
    put(card + "/a.jpg", make_jpeg({.segments = {{0xE1, camera.app1()}}}));
    put(card + "/b.jpg", make_jpeg({}));
    EXPECT_EQ(day_title(day_taken(card + "/a.jpg").value()), "11/21/26");
    EXPECT_FALSE(day_taken(card + "/b.jpg"));
}

}  // namespace
