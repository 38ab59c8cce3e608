#include <gmock/gmock.h>

#include "album/import/import_check.h"
#include "tests/album/import_fixture.h"

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

using room_test = import_fixture_t;

TEST_F(room_test, room_is_looked_at_first) {
    put(card + "/m.mov", "m");
    put(card + "/p.jpg", photo);
    const auto room = [&](const std::string& place) {
        return outcome([&] { return has_room(card, {{"m.mov"}, {"p.jpg"}}, place); });
    };
    EXPECT_EQ("true\n", room(dir / "not/yet/there"));
    fs::resize_file(card + "/m.mov", uintmax_t{1} << 43);
    EXPECT_THAT(
        room(dir / "not/yet/there"),
        MatchesRegex("false\n/.*/not/yet/there: [0-9]\\.[0-9] TiB more free space is needed for this import\\.\n"));
    fs::create_directories(album + "/movie");
    fs::rename(card + "/m.mov", album + "/movie/m.mov");
    fs::create_symlink(album + "/movie/m.mov", card + "/m.mov");
    EXPECT_THAT(room(album), HasSubstr("TiB more"));
    EXPECT_EQ("true\n", outcome([&] { return has_room(album + "/movie", {{"m.mov"}}, album); })) << "is there already";
}

}  // namespace
