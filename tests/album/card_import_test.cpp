#include "album/card/card_import.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "tests/album/album_fixture.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

blob_t photo_of(const std::string& date, unsigned seed) {
    exif_builder_t camera;
    camera.text(exif_builder_t::exif, 0x9003, date);
    return make_jpeg({.seed = seed, .segments = {{0xE1, camera.app1()}}});
}

struct card_import_test : album_test_t {
    card_import_test() { fs::create_directories(book); }

    // What became of the cards: proven or not, then the numbers of files missing, held, imported and equal.
    std::string run(bool only_check = false) {
        order.cards = cards;
        order.book = book;
        order.only_check = only_check;
        log = stderr_of([&] { result = import_cards(order, signals); });
        std::string text = result.is_proven() ? "proven" : "not proven";
        for (const card_fate_t fate :
             {card_fate_t::missing, card_fate_t::held, card_fate_t::imported, card_fate_t::equal}) {
            text += " " + std::to_string(result.count(fate));
        }
        return text;
    }
    // The place in the book of a file of the card, and why it has none.
    std::string place(const std::string& file) const {
        for (const card_entry_t& entry : result.files) {
            if (entry.file.path() == dir / file) {
                return (entry.place.empty() ? "" : fs::relative(entry.place, book).string()) + entry.reason;
            }
        }
        return "not listed";
    }
    std::string state() const {
        std::string text;
        for (const std::string& path : files_below(book)) {
            text += path + std::to_string(fs::last_write_time(path).time_since_epoch().count()) + "\n";
        }
        return text;
    }

    const std::string book = dir / "book";
    std::vector<std::string> cards = {dir / "card"};
    card_order_t order;
    card_result_t result;
    progress_signals_t signals;
    std::string log;
};

TEST_F(card_import_test, imports_three_cards_once) {
    cards = {dir / "a", dir / "b", dir / "c"};
    for (unsigned i = 0; i < 10; ++i) {
        const std::string name = "/IMG_000" + std::to_string(i) + ".JPG";
        const blob_t photo = photo_of("2026:11:21 10:00:00", i);
        put(dir / ("a/DCIM/100" + name), photo);
        put(dir / ("a/dcim/101" + name), photo_of("2026:11:2" + std::to_string(i % 2) + " 10:00:00", 50 + i));
        if (i % 3 == 0) {
            put(dir / ("b/DCIM/100/COPY" + std::to_string(i) + ".JPG"), photo);
        }
    }
    put(dir / "a/MISC/AUTPRINT.MRK", std::string("outside"));
    put(dir / "a/MISC/M0100.CTG", std::string("catalogue"));
    put(dir / "b/DCIM/100/head.txt", std::string("Title\nTitle\n"));
    put(dir / "c/sub/dir/MVI_1.MOV", std::string("movie"));
    put(dir / "c/sub/MVI_1.MOV", std::string("MOVIE"));
    put(dir / "c/sub/a\nb.CR2", std::string("raw"));
    put(dir / "c/sub/broken.jpg", std::string("no photograph"));
    put(dir / "c/count.txt", std::string("0+0"));
    put(dir / "c/empty.jpg", std::string());
    put(dir / "c/.hidden.jpg", std::string("hidden"));
    put(dir / "c/NIKON001.DSC", std::string("catalogue"));
    fs::create_directory_symlink("..", dir / "c/up");
    EXPECT_EQ(run(), "not proven 1 0 25 4") << log;
    EXPECT_EQ(place("a/DCIM/100/IMG_0002.JPG"), "20261121/original/IMG_0002.JPG");
    EXPECT_EQ(place("a/dcim/101/IMG_0002.JPG"), "20261120/original/IMG_0002.JPG");
    EXPECT_EQ(place("a/dcim/101/IMG_0003.JPG"), "20261121-2/original/IMG_0003.JPG");
    EXPECT_EQ(place("b/DCIM/100/COPY3.JPG"), "20261121/original/IMG_0003.JPG");
    EXPECT_THAT(place("c/sub/dir/MVI_1.MOV"), HasSubstr("-2/movie/MVI_1.MOV"));
    EXPECT_THAT(place("c/sub/a\nb.CR2"), HasSubstr("/txt/a\nb.CR2"));
    EXPECT_THAT(place("c/sub/broken.jpg"), HasSubstr("broken.jpg: Not a JPEG file"));
    EXPECT_THAT(place("c/count.txt"), HasSubstr("/txt/card-count.txt"));
    EXPECT_THAT(result.beside, ElementsAre(dir / "a/MISC"));
    EXPECT_EQ(result.passed_over.size(), 4U);
    EXPECT_EQ(text_of(book + "/20261121/txt/head.txt"), "11/21/26\r\n11/21/26\r\n");
    EXPECT_TRUE(fs::exists(book + "/20261121/SHA256SUMS"));

    fs::remove(dir / "c/sub/broken.jpg");
    const std::string before = state();
    EXPECT_EQ(run(), "proven 0 29 0 0") << log;
    EXPECT_EQ(run(true), "proven 0 29 0 0") << log;
    EXPECT_EQ(state(), before);
    EXPECT_THAT(log, testing::IsEmpty());
}

TEST_F(card_import_test, the_proof_turns) {
    const std::string photo = card + "/a.jpg";
    const std::string copy = book + "/20261121/original/a.jpg";
    const std::string movie = "/movie/m.mov";
    struct case_t {
        const char* name;
        std::function<void()> action;
        const char* reason;
    };
    const case_t cases[] = {
        {"a byte of the copy", [&] { put(copy, std::string(fs::file_size(copy), 'x')); }, "differs from "},
        {"a byte in the middle",
         [&] {
             blob_t bytes = read_file(copy);
             bytes[bytes.size() / 2] ^= 1;
             put(copy, bytes);
         },
         "differs from "},
        {"no copy", [&] { fs::remove(copy); }, "can't be read, No such file"},
        {"a link", [&] { fs::remove(copy), fs::create_symlink(photo, copy); }, "differs from "},
        {"the same file", [&] { fs::remove(copy), fs::create_hard_link(photo, copy); }, "differs from "},
        {"other contents on the card", [&] { put(photo, std::string("other")); }, "differs from "},
        {"gone from the card", [&] { fs::remove(photo); }, "gone from the card"},
        {"new on the card", [&] { put(card + "/new.jpg", std::string("new")); }, "no file of the book"},
        {"no card", [&] { fs::rename(card, dir / "away"); }, "gone from the card"},
    };
    for (const auto& [name, action, reason] : cases) {
        SCOPED_TRACE(name);
        for (const char* place : {"card", "away", "book"}) {
            fs::remove_all(dir / place);
        }
        fs::create_directory(book);
        std::string big(20000, 'j');  // behind the picture, so that the middle is no edge
        blob_t bytes = photo_of("2026:11:21 10:00:00", 1);
        bytes.insert(bytes.end(), big.begin(), big.end());
        put(photo, bytes);
        sigc::connection now = signals.zoom_pages.connect([&action = action](double) { action(); });
        EXPECT_THAT(run(), HasSubstr("not proven"));
        now.disconnect();
        std::string reasons;
        for (const card_entry_t& entry : result.files) {
            reasons += entry.reason;
        }
        EXPECT_THAT(reasons, HasSubstr(reason));
        EXPECT_THAT(run(true), HasSubstr("not proven"));
    }
}

TEST_F(card_import_test, no_name_gives_way) {
    const auto import = [this](const std::string& name, const blob_t& contents) {
        fs::remove_all(card);
        put(card + "/" + name, contents);
        run();
        return place("card/" + name);
    };
    const auto photo = [](unsigned seed) { return photo_of("2026:11:21 10:00:00", seed); };
    put(book + "/20261121/original/IMG_1.JPG", photo(1));
    put(book + "/20261121/SHA256SUMS", std::string(64, '0') + "  original/gone.jpg\n");
    put(book + "/20261121-2", std::string("in the way"));
    put(book + "/20261121-3/below/original/x.jpg", photo(2));
    EXPECT_EQ(import("IMG_1.JPG", photo(3)), "20261121-4/original/IMG_1.JPG");
    EXPECT_EQ(import("img_1.jpg", photo(4)), "20261121-5/original/img_1.jpg") << "some disks fold letters";
    EXPECT_EQ(import("gone.jpg", photo(5)), "20261121-4/original/gone.jpg") << "the sum of another file";
    EXPECT_EQ(import("other.jpg", photo(1)), "20261121/original/IMG_1.JPG") << "held";
    EXPECT_EQ(import("x.jpg", photo(2)), "20261121-3/below/original/x.jpg") << "held";
    put(card + "/b.jpg.txt", std::string("of another b.jpg"));
    order.album = "all";
    run();
    put(dir / "second/b.jpg", photo(7));
    put(dir / "second/b.jpg.txt", std::string("of b.jpg"));
    cards.push_back(dir / "second");
    EXPECT_EQ(run(), "proven 0 2 2 0") << log;
    EXPECT_EQ(place("second/b.jpg"), "all-2/original/b.jpg");
    EXPECT_EQ(place("second/b.jpg.txt"), "all-2/txt/b.jpg.txt");
    EXPECT_EQ(text_of(book + "/all-2/txt/head.txt"), "all-2\r\nall-2\r\n");
}

TEST_F(card_import_test, what_is_cleared_holds_no_copy) {
    put(dir / "link/original/a.jpg", photo_of("2026:11:21 10:00:00", 1));
    put(card + "/a.jpg", photo_of("2026:11:21 10:00:00", 1));
    fs::create_directories(card + "/backup");
    fs::create_directory_symlink(card, book + "/to_card");
    fs::copy(dir / "link/original", card + "/original");
    EXPECT_EQ(run(true), "not proven 2 0 0 0") << "an album of the book that lies on the card";
    struct case_t {
        std::string card, book;
        bool is_entangled;
    };
    for (const case_t& c : {case_t{"card", "card", true},
                            {"card", "book", false},
                            {"card", "card/backup", true},
                            {"card/backup", "card", true},
                            {"book/to_card", "card/backup", true},
                            {"card", "cardinal", true},
                            {"/", "card", true}}) {
        const std::string from = c.card == "/" ? c.card : dir / c.card;
        EXPECT_EQ(is_entangled(from, dir / c.book), c.is_entangled) << c.card << " " << c.book;
    }
    fs::create_directory(dir / "cardinal");
    EXPECT_FALSE(is_entangled(card, dir / "cardinal"));
}

}  // namespace
