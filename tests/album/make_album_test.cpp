#include "album/make_album.h"

#include <gmock/gmock.h>

#include "tests/album/album_fixture.h"

namespace {

using testing::HasSubstr;

struct make_album_test : album_test_t {
    std::string make() {
        return outcome([&] {
            result = make_album(order, unseen);
            return result.is_made();
        });
    }

    progress_signals_t unseen;
    album_order_t order{card, {{"p.jpg"}, {"q.jpg"}}, dir / "book/new", {}, {}, {}, {}, {}, false};
    album_result_t result;
};

TEST_F(make_album_test, tells_how_far_it_came) {
    put(card + "/p.jpg", make_jpeg({.width = 100, .height = 40}));
    put(card + "/q.jpg", "no photograph");
    put(card + "/HEAD.TXT", "From the card\nFrom the card\nhead\n");
    fs::create_directories(dir / "book/txt");
    EXPECT_THAT(make(), HasSubstr("false\n"));
    EXPECT_EQ(album_step_t::import, result.refused);
    EXPECT_EQ(stage_t::sizes, result.import.failed);
    EXPECT_EQ("q.jpg", result.import.file);
    EXPECT_THAT(result.reason, testing::StartsWith(order.album + "/original/q.jpg: "));

    order.options.keep_going = true;
    EXPECT_THAT(make(), HasSubstr("true\n"));
    ASSERT_EQ(1U, result.import.left_out.size());
    EXPECT_EQ("q.jpg", result.import.left_out[0].name);
    EXPECT_NE("", result.import.left_out[0].reason);
    EXPECT_EQ("From the card\r\nFrom the card\r\nhead\r\n", text_of(order.album + "/txt/head.txt"));
    EXPECT_THAT(text_of(dir / "book/index.html"), HasSubstr("From the card"));

    put(card + "/p.jpg", "another");
    EXPECT_EQ("false\n" + order.album + "/original/p.jpg: there already, with other contents.\n", make());
    EXPECT_EQ(album_step_t::conflicts, result.refused);
    EXPECT_EQ((std::vector{order.album + "/original/p.jpg"}), result.conflicts);
    put(card + "/m.mov", "m");
    fs::resize_file(card + "/m.mov", uintmax_t{1} << 43);
    order.files = {{"m.mov"}};
    EXPECT_THAT(make(), HasSubstr("TiB more free space"));
    EXPECT_EQ(album_step_t::room, check_album_order(order).refused);
    EXPECT_THAT(result.missing_room, HasSubstr(" TiB"));
    order.album = dir / "no/such";
    order.files = {};
    EXPECT_THAT(make(), HasSubstr("mkdir failed, No such file or directory"));
    EXPECT_EQ(album_step_t::directory, result.refused);
}

TEST_F(make_album_test, what_was_typed_stays_when_the_card_has_texts) {
    const std::string head = order.album + "/txt/head.txt";
    fs::create_directories(dir / "book");
    put(card + "/head.txt", "Card\nCard\nfrom the card\n");
    put(card + "/last.txt", "the end\n");
    order.files = {{"head.txt"}, {"last.txt"}};
    order.title = "Typed";
    order.head = order.last = std::nullopt;
    EXPECT_EQ("true\n" + card + "/head.txt: not imported; the album gets another text.\n", make());
    EXPECT_EQ("Typed\r\nTyped\r\nfrom the card\r\n", text_of(head));
    EXPECT_EQ("the end\n", text_of(order.album + "/txt/last.txt"))
        << "a text that was left alone is a file like others";
    order.title = "Card";
    order.replace = replace_t::files;
    EXPECT_EQ("true\n", make());
    EXPECT_EQ(text_of(card + "/head.txt"), text_of(head));
}

TEST_F(make_album_test, refuses_a_source_that_it_would_remove) {
    fs::create_directories(album + "/size0/deeper");
    fs::create_directory_symlink(album + "/size0", dir / "link");
    fs::create_directories(dir / "elsewhere");
    fs::create_directory_symlink(dir / "elsewhere", album + "/thumb");
    order.album = album;
    order.files = {};
    const std::pair<std::string, bool> sources[] = {{album + "/original", true},
                                                    {album, true},
                                                    {card, true},
                                                    {album + "2", true},
                                                    {album + "/size0", false},
                                                    {dir / "link", false},
                                                    {dir / "elsewhere", false},
                                                    {album + "/size0/deeper", false},
                                                    {album + "/txt", false}};
    for (const auto& [source, is_fit] : sources) {
        order.source = source;
        EXPECT_EQ(is_fit ? "true\n"
                         : "false\n" + source + ": inside the album " + album +
                               "; only its original/ can be imported again.\n",
                  outcome([&] { return check_album_order(order).is_made(); }));
    }
}

TEST_F(make_album_test, changes_a_noted_sum_only_when_told) {
    put(card + "/m.mov", "as shot");
    order.album = album;
    order.files = {{"m.mov"}};
    order.options.verify = true;
    EXPECT_EQ("true\n", make());
    const std::string movie = order.album + "/movie/m.mov";
    const std::string sums = text_of(order.album + "/SHA256SUMS");
    put(movie, "damaged");
    put(card + "/m.mov", "damaged");
    for (const replace_t replace : {replace_t::nothing, replace_t::files}) {
        order.replace = replace;
        EXPECT_EQ("false\n" + movie + ": has another sum in SHA256SUMS.\n", make());
        EXPECT_EQ(album_step_t::conflicts, result.refused);
        EXPECT_EQ(sums, text_of(order.album + "/SHA256SUMS"));
    }
    order.replace = replace_t::files_and_sums;
    EXPECT_EQ("true\n", make());
    order.replace = replace_t::files;
    put(card + "/m.mov", "as shot");
    EXPECT_EQ("true\n", make()) << "the whole copy comes back in the place of the damaged one";
    EXPECT_EQ(sums, text_of(order.album + "/SHA256SUMS"));
}

TEST_F(make_album_test, warns_of_names_that_links_do_not_reach) {
    const std::pair<const char*, const char*> cases[] = {
        {"a#1.jpg", "\"#\""},   {"a?.jpg", "\"?\""},  {"a%25.jpg", "\"%\""},      {"a\".jpg", "\"\"\""},
        {"a&lt.mov", "\"&\""},  {"a<b.jpg", "\"<\""}, {"a\n.jpg", "a line end"},  {"100%.jpg", nullptr},
        {"a & b.jpg", nullptr}, {"#.txt", nullptr},   {"\303\244 '.jpg", nullptr}};
    for (const auto& [name, part] : cases) {
        const std::string told = stderr_of([&, file = name] { warn_of_names({{file}}, album); });
        EXPECT_EQ(part != nullptr, told.find(part == nullptr ? "links" : part) != std::string::npos) << name << told;
    }
    put(album + "/original/IMG.JPG", "");
    EXPECT_EQ("IMG.JPG, IMG.jpg: share their zoom pages, as html/IMG_1.html; rename one before the import.\n",
              stderr_of([&] { warn_of_names({{"IMG.jpg"}}, album); }));
}

}  // namespace
