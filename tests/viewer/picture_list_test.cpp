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
        EXPECT_EQ(in_dir(c.listed), list.paths);
        EXPECT_EQ(c.first, list.first);
        EXPECT_FALSE(list_pictures(list, {dir / "c.jpg", dir / "gone"}, problem));
        EXPECT_EQ(dir / "gone" + ": no such file or directory.", problem);
        EXPECT_EQ(in_dir(c.listed), list.paths) << "unchanged";
    }
}

}  // namespace
