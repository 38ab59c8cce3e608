#include "viewer/picture_list.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

namespace {

using namespace test_support;

TEST(PictureList, TakesDirectoriesAndFiles) {
    const temp_dir_t dir;
    std::filesystem::create_directories(dir / "sub/x.jpg");
    for (const char* name : {"b.JPG", "a.jpeg", "c.jpg", ".hidden.jpg", "note.txt", "B.mov", "sub/d.jpg"}) {
        write_file(dir / name, std::string());
    }
    struct case_t {
        const char* name;
        std::vector<std::string> arguments;
        std::vector<std::string> listed;
        size_t first;
    };
    const case_t cases[] = {
        {"directory", {""}, {"a.jpeg", "b.JPG", "c.jpg"}, 0},
        {"file alone", {"c.jpg"}, {"a.jpeg", "b.JPG", "c.jpg"}, 2},
        {"file of another kind", {"note.txt"}, {"a.jpeg", "b.JPG", "c.jpg", "note.txt"}, 3},
        {"several", {"c.jpg", "sub", "a.jpeg"}, {"c.jpg", "sub/d.jpg", "a.jpeg"}, 0},
        {"no pictures", {"sub/x.jpg"}, {}, 0},
    };
    const auto paths_of = [](const talovue::picture_list_t& list) {
        std::vector<std::string> paths;
        for (const talovue::picture_t& picture : list.pictures) {
            EXPECT_EQ("", picture.album);
            paths.push_back(picture.path);
        }
        return paths;
    };
    const auto in_dir = [&dir](std::vector<std::string> names) {
        for (std::string& name : names) {
            name.insert(0, dir / "");
        }
        return names;
    };
    for (const case_t& c : cases) {
        SCOPED_TRACE(c.name);
        talovue::picture_list_t list;
        std::string problem;
        EXPECT_TRUE(list_pictures(list, in_dir(c.arguments), problem));
        EXPECT_EQ(in_dir(c.listed), paths_of(list));
        EXPECT_EQ(c.first, list.first);
        EXPECT_FALSE(list_pictures(list, {dir / "c.jpg", dir / "gone"}, problem));
        EXPECT_EQ(dir / "gone" + ": no such file or directory.", problem);
        EXPECT_EQ(in_dir(c.listed), paths_of(list)) << "unchanged";
    }
}

TEST(PictureList, TakesAllPhotographsOfAnAlbumForOneOfItsSizes) {
    const temp_dir_t dir;
    for (const char* name : {"album/thumb/b.JPG", "album/thumb/A.JPG", "album/original/A.JPG", "album/original/b.JPG",
                             "album/original/lost.jpg", "album/original/note.txt", "album/size0/b.JPG",
                             "album/size1/b.JPG", "album/size01/b.JPG", "album/size17/b.JPG", "plain/size1/b.JPG",
                             "bare/original/note.txt", "bare/size1/b.JPG", "loose/original/A.JPG", "loose/b.JPG"}) {
        std::filesystem::create_directories((dir / name).substr(0, (dir / name).rfind('/')));
        write_file(dir / name, std::string());
    }
    std::filesystem::create_directory_symlink(dir / "plain/size1", dir / "album/size2");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(dir / "album/size1");
    const std::vector<std::string> all = {"A.JPG", "b.JPG", "lost.jpg"};
    const std::vector<std::string> own = {"b.JPG"};
    const std::pair<std::string, std::vector<std::string>> cases[] = {
        {dir / "album/size1", all},
        {dir / "album/size0/", all},
        {dir / "album/size2", all},
        {".", all},
        {"../size1/.", all},
        {dir / "album", all},
        {dir / "album/thumb", {"A.JPG", "b.JPG"}},
        {dir / "album/size01", own},
        {dir / "album/size17", own},
        {dir / "plain/size1", own},
        {dir / "bare/size1", own},
        {dir / "loose", own},
        {dir / "album/size1/b.JPG", own},
    };
    for (const auto& [argument, names] : cases) {
        SCOPED_TRACE(argument);
        talovue::picture_list_t list;
        std::string problem;
        EXPECT_TRUE(list_pictures(list, {argument}, problem));
        std::vector<std::string> found;
        for (const talovue::picture_t& picture : list.pictures) {
            found.push_back(picture.name());
            EXPECT_EQ(names == all, !picture.album.empty());
        }
        EXPECT_EQ(names, found);
    }
    std::filesystem::current_path(before);
}

}  // namespace
