#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "album/import/import.h"
#include "dialogs/view_album_dialog.h"
#include "dialogs/view_book_dialog.h"
#include "tests/dialogs/toolkit_driver.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"
#include "toolkit/text_encoding.h"

namespace {

using namespace taloram;
using namespace test_support;

const std::string broken = "bro\x83ken.jpg";
const std::string camera = "camera; b.jpg";

// A book in a book, in it an album of a large photograph, a broken one and one that the camera stood upright for.
struct book_t {
    temp_dir_t dir;
    std::string album = dir / "a b/album";
    Gtk::Window window;

    book_t() {
        for (const char* made : {"txt", "a b", "a b/txt", "a b/album", "a b/album/txt"}) {
            mkdir((dir / made).c_str(), 0755);
        }
        write_file(dir / "big.jpg", make_jpeg({.width = 2048, .height = 1536}));
        write_file(dir / camera, make_camera_jpeg({}, 6, false));
        write_file(dir / "film.mov", std::string("movie"));
        write_file(album + "/txt/big.jpg.txt", std::string("First\r\nSecond\r\n"));
        progress_t none;
        EXPECT_TRUE(
            makealbumwithrotate(dir.path(), {{"big.jpg"}, {camera}, {"film.mov"}}, album, none, none, none, none));
        write_file(album + "/thumb/" + broken, std::string("junk"));
    }
};

TEST(ViewAlbumDialog, shows_moves_and_turns) {
    book_t book;
    ViewAlbumDialog dialog(book.window, book.album, "");
    dialog.show();
    wait_until([&] { return shows_text(dialog, "First") && shows_text(dialog, "can't be shown"); });
    EXPECT_NE(nullptr, find_button(dialog, "film.mov"));
    auto& view = *find_all<photo_view_t>(dialog).at(0);
    press_key(dialog, GDK_KEY_Return);
    // The smallest size that fills the window, then the one that has all pixels.
    wait_until([&] { return view.shown_file() == book.album + "/size1/big.jpg"; });
    press_key(dialog, GDK_KEY_1);
    wait_until([&] { return view.shown_file() == book.album + "/size0/big.jpg" && view.zoom() == 1; });
    on_next_dialog([](Gtk::Dialog& box) {
        EXPECT_FALSE(find_all<Gtk::TextView>(box).at(0)->get_editable());
        box.response(Gtk::RESPONSE_CANCEL);
    });
    click(dialog, "Comment");

    press_key(dialog, GDK_KEY_Page_Down);
    EXPECT_TRUE(shows_text(dialog, "2 / 3"));
    wait_until([&] { return view.decoded_count() == 3; });  // with both neighbours
    EXPECT_EQ("", view.shown_file());
    answer_next("The photograph could not be turned.", "OK");
    EXPECT_NE("", stderr_of([&] { click(dialog, "Turn Left"); }));
    EXPECT_TRUE(all_answered());

    press_key(dialog, GDK_KEY_End);
    const auto width = [&] { return view.shown_picture() ? view.shown_picture()->get_width() : 0; };
    wait_until([&] { return width() == 48; });  // stored as 64 x 48
    click(dialog, "Turn Right");
    wait_until([&] { return width() == 64; });
    EXPECT_EQ(read_file(book.dir / camera), read_file(book.album + "/original/" + camera));
    press_key(dialog, GDK_KEY_Escape);
    EXPECT_TRUE(dialog.get_visible() && !view.get_mapped()) << "back among the thumbnails";
}

TEST(ViewAlbumDialog, many_photographs_have_few_widgets) {
    const temp_dir_t album;
    mkdir((album / "thumb").c_str(), 0755);
    write_file(album / "thumb/100.jpg", make_jpeg({}));
    for (int i = 101; i < 500; ++i) {
        link((album / "thumb/100.jpg").c_str(), (album / "thumb/" + std::to_string(i) + ".jpg").c_str());
    }
    Gtk::Window window;
    ViewAlbumDialog dialog(window, album.path(), "");
    dialog.show();
    const auto focused = [&] {
        settle();
        return dialog.get_focus() == nullptr ? Glib::ustring() : dialog.get_focus()->get_accessible()->get_name();
    };
    wait_until([&] { return find_button(dialog, "108.jpg") != nullptr; });
    EXPECT_EQ(nullptr, find_button(dialog, "499.jpg"));
    struct step_t {
        guint key;
        const char* photo;  // that has the focus afterwards, five in a row
    };
    for (const step_t& step : {step_t{GDK_KEY_Left, "100.jpg"},
                               {GDK_KEY_Down, "105.jpg"},
                               {GDK_KEY_Right, "106.jpg"},
                               {GDK_KEY_Up, "101.jpg"},
                               {GDK_KEY_End, "499.jpg"},
                               {GDK_KEY_Down, "499.jpg"},
                               {GDK_KEY_Home, "100.jpg"},
                               {GDK_KEY_Page_Down, "110.jpg"}}) {
        press_key(dialog, step.key);
        EXPECT_EQ(step.photo, focused());
    }
    EXPECT_EQ(nullptr, find_button(dialog, "499.jpg")) << "scrolled away";
    press_key(dialog, GDK_KEY_Return);
    EXPECT_TRUE(shows_text(dialog, "11 / 400"));
    press_key(dialog, GDK_KEY_End);
    press_key(dialog, GDK_KEY_Escape);
    EXPECT_EQ("499.jpg", focused());
}

TEST(Viewers, tell_which_texts_cant_be_read) {
    book_t book;
    const std::string head = book.album + "/txt/head.txt";
    const std::string comment = book.album + "/txt/big.jpg.txt";
    for (const std::string& text : {head, comment}) {
        std::filesystem::remove(text);
        std::filesystem::create_directory(text);
    }
    const auto notice = [](const std::string& path) {
        return message_text(msg_text_unreadable) + " " + path + ": Is a directory";
    };
    EXPECT_NE("", stderr_of([&] {
                  ViewAlbumDialog dialog(book.window, book.album, "");
                  dialog.show();
                  EXPECT_TRUE(shows_text(dialog, notice(head)));
                  press_key(dialog, GDK_KEY_Return);
                  EXPECT_TRUE(shows_text(dialog, notice(comment)));
              }));
}

TEST(UprightPhoto, every_orientation) {
    // Where the upright picture's pixel 5, 2 lies in the 64 x 48 pixels of the file: EXIF Orientation 1 to 8.
    constexpr unsigned places[8][2] = {{5, 2}, {58, 2}, {58, 45}, {5, 45}, {2, 5}, {2, 42}, {61, 42}, {61, 5}};
    const temp_dir_t album;
    mkdir((album / "size0").c_str(), 0755);
    for (unsigned i = 0; i < 8; ++i) {
        SCOPED_TRACE(i + 1);
        const blob_t file = make_camera_jpeg({}, i + 1, false);
        write_file(album / "size0/p.jpg", file);
        const auto picture = load_upright(list_photo_sizes(album.path(), "p.jpg", 64).at(0));
        const unsigned char* shown = picture->get_data() + 2 * picture->get_stride() + 5 * 4;  // blue, green, red, -
        const pixels_t pixels = decode(file);
        const unsigned char* stored = &pixels.bytes[(places[i][1] * pixels.width + places[i][0]) * 3];
        EXPECT_EQ(blob_t({stored[2], stored[1], stored[0]}), blob_t(shown, shown + 3));
    }
}

TEST(ViewBookDialog, opens_books_and_albums_to_any_depth) {
    book_t book;
    ViewBookDialog dialog(book.window, book.dir.path(), "");
    on_next_dialog([](Gtk::Dialog& top) { click(top, "Open Book"), click(top, "Close"); });
    on_next_dialog([](Gtk::Dialog& sub) { click(sub, "Photos"), click(sub, "Close"); });
    on_next_dialog([](Gtk::Dialog& album) { click(album, "Close"); });
    EXPECT_EQ(Gtk::RESPONSE_CLOSE, dialog.run());
    EXPECT_TRUE(all_answered());
}

}  // namespace
