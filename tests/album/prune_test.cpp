#include <gmock/gmock.h>

#include "tests/album/import_fixture.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;

using prune_test = import_fixture_t;

TEST_F(prune_test, an_update_prunes_only_when_told) {
    for (const char* name : {"a.jpg", "gone.jpg", "a_1.JPG"}) {
        put(album + "/original/" + name, photo);
    }
    EXPECT_EQ("true\n", update(orphans_t::report));
    const strings_t kept = {"html/notes_1x.html", "html/notes_17.html", "html/notes.html", "size0/gone.txt",
                            "size1/q.png",        "thumb/gone.gif",     "size17/gone.jpg", "txt/gone.jpg.txt"};
    for (const std::string& path : kept) {
        put(album + "/" + path, "of the user");
    }
    put(album + "/size2/gone.jpg", "an older level");
    put(album + "/html/lost_3.html", "a page alone");
    const strings_t before = names("/html");
    fs::remove(album + "/original/gone.jpg");
    EXPECT_THAT(update(orphans_t::report),
                AllOf(HasSubstr("/original/gone.jpg: gone; --prune"), HasSubstr("/html/lost_3.html: its photo")));
    EXPECT_EQ(before, names("/html"));

    fs::remove(album + "/thumb/gone.gif");  // the pages show whatever has a thumbnail
    EXPECT_EQ("true\n", update(orphans_t::remove));
    for (const std::string& path : kept) {
        EXPECT_EQ(path != "thumb/gone.gif", fs::exists(album + "/" + path)) << path;
    }
    EXPECT_TRUE(names("/size2").empty());
    EXPECT_EQ((strings_t{"thumb/a.jpg", "thumb/a_1.JPG"}), names("/thumb"));
    EXPECT_EQ(
        (strings_t{"html/a_1.html", "html/a_1_1.html", "html/notes.html", "html/notes_17.html", "html/notes_1x.html"}),
        names("/html"));
}

}  // namespace
