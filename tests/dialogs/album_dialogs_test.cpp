#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "album/import/import.h"
#include "dialogs/edit_album_dialog.h"
#include "dialogs/edit_book_dialog.h"
#include "dialogs/make_album_dialog.h"
#include "dialogs/view_album_dialog.h"
#include "settings/settings.h"
#include "tests/dialogs/toolkit_driver.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"
#include "widgets/photo_grid.h"

namespace {

using namespace taloram;
using namespace test_support;

int column_of(Gtk::Table& table, Gtk::Widget& cell, const char* property = "left-attach") {
    guint value = 0;
    gtk_container_child_get(GTK_CONTAINER(table.gobj()), cell.gobj(), property, &value, nullptr);
    return static_cast<int>(value);
}

// The picture that shows in a widget, as width and height.
std::pair<int, int> picture_size(Gtk::Widget& top, size_t index = 0) {
    const auto pixels = find_all<Gtk::Image>(top).at(index)->get_pixbuf();
    return pixels ? std::pair(pixels->get_width(), pixels->get_height()) : std::pair(0, 0);
}

TEST(MakeAlbumDialog, takes_from_where_a_dropped_file_lies) {
    const temp_dir_t card;
    write_file(card / "B.MOV", std::string("movie"));
    Gtk::Window window;
    const std::string book = "/no book";
    MakeAlbumDialog dialog(window, "/nowhere", book);
    drop(dialog, card / "B.MOV");
    EXPECT_EQ(card.path(), dialog.get_from());
}

TEST(MakeAlbumDialog, lists_turns_and_selects) {
    const temp_dir_t card;
    const temp_dir_t empty;
    const std::string invalid = "bro\x83ken.JPG";
    write_file(card / "A.JPG", make_camera_jpeg({}, 1, true));
    write_file(card / "B.MOV", std::string("movie"));
    write_file(card / invalid, std::string("junk"));
    write_file(card / "head.txt", std::string("Trip\r\nTrip\r\nBy \x83 sea\r\n"));
    g_global.horizontal_items = 0;
    Gtk::Window window;
    const std::string book = "/no book";
    MakeAlbumDialog dialog(window, card.path(), book);
    EXPECT_TRUE(find_all<choice_button_t>(dialog).empty());
    const std::string err = stderr_of([&] { click(dialog, "Update List"); });
    EXPECT_TRUE(err.ends_with((card / invalid) + ": jpeginfo analyze_markers() failed.\n")) << err;
    g_global.horizontal_items = 5;

    auto files = find_all<choice_button_t>(dialog);
    auto turns = find_all<Gtk::SpinButton>(dialog);
    std::reverse(files.begin(), files.end());  // a table names the last first
    std::reverse(turns.begin(), turns.end());
    ASSERT_EQ(4U, files.size());
    ASSERT_EQ(2U, turns.size()) << "photographs alone can be turned";
    auto& table = dynamic_cast<Gtk::Table&>(*files[1]->get_parent());
    EXPECT_EQ(std::pair(0, 3), std::pair(column_of(table, *files[1]), column_of(table, *files[1], "top-attach")));
    EXPECT_EQ(nullptr, files[2]->get_image()) << "a broken file has no picture";

    turns[0]->set_value(90);
    EXPECT_EQ(std::pair(120, 160), picture_size(*files[0]));
    turns[0]->set_value(180);
    turns[0]->set_value(0);
    EXPECT_EQ(std::pair(160, 120), picture_size(*files[0]));
    EXPECT_EQ("A.JPG: 45: not 90/180/270.\n", stderr_of([&] { turns[0]->set_value(45); }));
    turns[0]->set_value(270);
    EXPECT_TRUE(dialog.selected_files().empty());
    click(dialog, "Invert Selection");
    click(dialog, "B.MOV");
    EXPECT_TRUE(turns[0]->get_editable());
    const auto chosen = dialog.selected_files();
    ASSERT_EQ(3U, chosen.size());
    EXPECT_EQ(3U, chosen[0].rightrotatecount);
    EXPECT_EQ(invalid, chosen[1].filename);
    EXPECT_EQ("Trip", dialog.get_title());
    EXPECT_EQ("By \x83 sea\r\n", dialog.begin_comment()) << "a text that was left alone keeps its bytes";

    const auto entries = find_all<Gtk::Entry>(dialog);
    EXPECT_FALSE(dialog.leave_from(nullptr)) << "what is listed stays selected";
    entries[0]->set_text(empty.path());
    EXPECT_TRUE(dialog.selected_files().empty()) << "names of one directory never stand for files of another";
    EXPECT_TRUE(dialog.leave_from(nullptr));
    EXPECT_TRUE(find_all<choice_button_t>(dialog).empty());
    entries[1]->set_text("x\r\ny\n");
    EXPECT_EQ(book + "/x y ", dialog.get_to()) << "pasted line ends";
    entries[1]->set_text("");
    EXPECT_EQ("", dialog.get_to());
}

TEST(MakeAlbumDialog, many_photographs_have_few_widgets) {
    constexpr size_t count = 400;
    const temp_dir_t card;
    write_file(card / "100.JPG", make_camera_jpeg({}, 1, true));
    for (size_t i = 1; i < count; ++i) {
        link((card / "100.JPG").c_str(), (card / std::to_string(100 + i) + ".JPG").c_str());
    }
    Gtk::Window window;
    const std::string book = "/no book";
    MakeAlbumDialog dialog(window, card.path(), book);
    dialog.show();
    wait_until([&] { return find_button(dialog, "100.JPG") != nullptr; });
    EXPECT_EQ(nullptr, find_button(dialog, "499.JPG"));
    click(dialog, "101.JPG");
    find_button(dialog, "101.JPG")->grab_focus();
    const auto focused = [&] {
        return dialog.get_focus() == nullptr ? Glib::ustring() : dialog.get_focus()->get_tooltip_text();
    };
    for (int row = 1; row <= 20; ++row) {  // five in each
        settle();
        dialog.child_focus(Gtk::DIR_DOWN);
        ASSERT_EQ(std::to_string(101 + 5 * row) + ".JPG", focused());
    }
    EXPECT_EQ(nullptr, find_button(dialog, "101.JPG")) << "scrolled away";
    find_all<Gtk::ScrolledWindow>(dialog).at(0)->get_vadjustment()->set_value(1e6);
    wait_until([&] { return find_button(dialog, "499.JPG") != nullptr; });
    EXPECT_GT(120U, find_all<choice_button_t>(dialog).size());
    EXPECT_LT("400.JPG", focused()) << "the keyboard goes on from what is seen";
    ASSERT_EQ(1U, dialog.selected_files().size());
    click(dialog, "Invert Selection");
    find_all<Gtk::ScrolledWindow>(dialog).at(0)->get_vadjustment()->set_value(0);
    wait_until([&] { return find_button(dialog, "101.JPG") != nullptr; });
    const auto chosen = dialog.selected_files();
    ASSERT_EQ(count - 1, chosen.size());
    EXPECT_EQ("102.JPG", chosen[1].filename);
    EXPECT_FALSE(dynamic_cast<Gtk::ToggleButton&>(*find_button(dialog, "101.JPG")).get_active());
}

// A refused answer leaves the dialog as it is, and it goes on listing. The name is one for this system's directories.
TEST(MakeAlbumDialog, is_answered_again) {
    const temp_dir_t book;
    const temp_dir_t card;
    const temp_dir_t other;
    write_file(card / "old.JPG", make_jpeg({}));
    write_file(other / "new.JPG", make_jpeg({}));
    mkdir((book / "txt").c_str(), 0755);
    write_file(book / "txt/head.txt", std::string("B\r\nB\r\n"));
    g_global.from = card.path();
    Gtk::Window window;
    on_next_dialog([](Gtk::Dialog& editor) { click(editor, "New Album"); });
    on_next_dialog(
        [](Gtk::Dialog& maker) { click(maker, "Update List"), click(maker, "old.JPG"), click(maker, "OK"); });
    answer_next("Please enter a title.", "OK");
    on_next_dialog([&](Gtk::Dialog& maker) {
        const auto entries = find_all<Gtk::Entry>(maker);
        entries[0]->set_text(other.path());
        g_signal_emit_by_name(entries[0]->gobj(), "activate");
        click(maker, "new.JPG");
        entries[1]->set_text("a\\b");
        entries.back()->set_text("Title");
        click(maker, "OK");
    });
    on_next_dialog([](Gtk::Dialog& editor) { click(editor, "Cancel"); });
    edit_book(window, book.path());
    EXPECT_TRUE(all_answered());
    EXPECT_EQ(read_file(other / "new.JPG"), read_file(book / "a\\b/original/new.JPG"));
    const blob_t page = read_file(book / "index.html");
    EXPECT_NE(std::string::npos, std::string(page.begin(), page.end()).find("a\\b"));
}

struct album_t {
    temp_dir_t dir;
    Gtk::Window window;

    album_t() {
        mkdir((dir / "txt").c_str(), 0755);
        write_file(dir / "txt/head.txt", std::string("T\r\nT\r\n"));
        write_file(dir / "P.JPG", make_jpeg({}));
        progress_t progress;
        EXPECT_TRUE(
            makealbumwithrotate(dir.path(), {{"P.JPG", 0}}, dir.path(), progress, progress, progress, progress));
    }
};

TEST(EditAlbumDialog, saves_texts_comments_and_turns) {
    album_t album;
    EditAlbumDialog dialog(album.window, album.dir.path());
    find_all<Gtk::SpinButton>(dialog).at(0)->set_value(90);
    EXPECT_EQ(std::pair(12, 16), picture_size(dialog));
    find_all<Gtk::Entry>(dialog).at(0)->set_text("New");
    on_next_dialog([](Gtk::Dialog& box) { click(box, "P.JPG"), click(box, "OK"); });
    on_next_dialog([](Gtk::Dialog& box) {
        find_all<Gtk::TextView>(box).at(0)->get_buffer()->set_text("one\ntwo");
        click(box, "Save");
    });
    EXPECT_EQ("P.JPG: loadphotocomment() failed.\n", stderr_of([&] { EXPECT_EQ(Gtk::RESPONSE_OK, dialog.run()); }));
    EXPECT_TRUE(all_answered());
    const auto text = [&](const char* name) { return read_file(album.dir / name); };
    EXPECT_EQ(blob_t({'o', 'n', 'e', '\r', '\n', 't', 'w', 'o', '\r', '\n'}), text("txt/P.JPG.txt"));
    EXPECT_EQ(blob_t({'N', 'e', 'w', '\r', '\n', 'N', 'e', 'w', '\r', '\n'}), text("txt/head.txt"));
    EXPECT_EQ(48U, decode(text("size0/P.JPG")).width) << "64 x 48, turned";

    // What the next update makes: of the original again, and for a camera that knew better what it knew.
    write_file(album.dir / "original/Q.JPG", make_camera_jpeg({}, 3, false));
    EditAlbumDialog again(album.window, album.dir.path());
    for (Gtk::SpinButton* spinner : find_all<Gtk::SpinButton>(again)) {
        spinner->set_value(90);
    }
    EXPECT_EQ(std::pair(64, 48), picture_size(again, 0)) << "Q.JPG";
    EXPECT_EQ(std::pair(12, 16), picture_size(again, 1)) << "P.JPG";
}

TEST(EditAlbumDialog, without_a_title_the_album_is_updated_all_the_same) {
    album_t album;
    EditAlbumDialog dialog(album.window, album.dir.path());
    remove((album.dir / "size0/P.JPG").c_str());
    find_all<Gtk::Entry>(dialog).at(0)->set_text("");
    on_next_dialog([](Gtk::Dialog& box) { click(box, "Apply"); });
    answer_next("Please enter a title.", "OK");
    EXPECT_EQ(Gtk::RESPONSE_APPLY, dialog.run());
    EXPECT_EQ("T\r\nT\r\n",
              std::string(reinterpret_cast<const char*>(read_file(album.dir / "txt/head.txt").data()), 6));
    EXPECT_EQ(read_file(album.dir / "original/P.JPG"), read_file(album.dir / "size0/P.JPG"));
}

TEST(EditAlbumDialog, what_can_not_be_read_is_named_and_stays) {
    album_t album;
    const std::string head = album.dir / "txt/head.txt", comment = album.dir / "txt/P.JPG.txt";
    for (const std::string& path : {head, comment}) {
        rename(path.c_str(), (path + ".kept").c_str());
        mkdir(path.c_str(), 0755);
    }
    EditAlbumDialog dialog(album.window, album.dir.path());
    Gtk::Entry& title = *find_all<Gtk::Entry>(dialog).at(0);
    EXPECT_EQ(message_text(msg_text_unreadable).raw() + " " + head + ": Is a directory",
              title.get_placeholder_text().raw());
    EXPECT_FALSE(title.get_sensitive() || find_all<Gtk::TextView>(dialog).at(0)->get_sensitive());
    rmdir(head.c_str());
    rename((head + ".kept").c_str(), head.c_str());
    on_next_dialog([](Gtk::Dialog& box) { click(box, "P.JPG"), click(box, "OK"); });
    answer_next(comment + ": Is a directory", "OK");
    on_next_dialog([&](Gtk::Dialog& box) {
        EXPECT_TRUE(find_button(box, "OK") == nullptr && !find_all<Gtk::TextView>(box).at(0)->get_editable());
        rmdir(comment.c_str());
        click(box, "Cancel");
    });
    answer_next("The texts could not be saved.\n" + head + ": Is a directory", "OK");
    EXPECT_EQ(Gtk::RESPONSE_OK, dialog.run());
    EXPECT_TRUE(all_answered());
    EXPECT_EQ('T', read_file(head).at(0)) << "readable again, but nobody saw it";
}

// A listing that fails, here at a link that leads to itself, is told and shows nothing.
TEST(AlbumDialogs, what_can_not_be_listed_is_not_shown) {
    album_t album;
    MakeAlbumDialog maker(album.window, album.dir / "original", album.dir.path());
    click(maker, "Update List");
    click(maker, "P.JPG");
    EXPECT_EQ(1U, maker.selected_files().size());
    const std::string head = album.dir / "original/head.txt";
    ASSERT_EQ(0, mkdir(head.c_str(), 0755));
    EXPECT_NE("", stderr_of([&] { click(maker, "Update List"); }));
    EXPECT_TRUE(shows_text(maker, message_text(msg_text_unreadable) + "\n" + head + ": Is a directory"));
    rmdir(head.c_str());
    rename((album.dir / "original").c_str(), (album.dir / "kept").c_str());
    ASSERT_EQ(0, symlink("original", (album.dir / "original").c_str()));
    EXPECT_FALSE(maker.leave_from(nullptr));
    EXPECT_TRUE(maker.selected_files().empty() && find_button(maker, "P.JPG") == nullptr);
    EXPECT_TRUE(shows_text(maker, message_text(msg_source_unreadable)));

    static_cast<void>(stderr_of([&] {
        EditAlbumDialog editor(album.window, album.dir.path());
        EXPECT_TRUE(shows_lines(editor, message_text(msg_album_unreadable)) && editor.selected_files().empty());
        ViewAlbumDialog viewer(album.window, album.dir.path(), "");
        EXPECT_TRUE(shows_lines(viewer, message_text(msg_album_unreadable)));
        EXPECT_FALSE(shows_text(viewer, "P.JPG")) << "its thumbnail is there";
    }));
}

TEST(EditAlbumDialog, no_originals) {
    const temp_dir_t album;
    Gtk::Window window;
    const std::string line = album.path() + ": EditAlbumDialog make_rows() failed.\n";
    EXPECT_EQ(line, stderr_of([&] { EXPECT_TRUE(EditAlbumDialog(window, album.path()).selected_files().empty()); }));
}

}  // namespace
