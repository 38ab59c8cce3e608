#include <gmock/gmock.h>

#include <filesystem>

#include "album/texts/comment_store.h"
#include "dialogs/edit_book_dialog.h"
#include "dialogs/make_album_dialog.h"
#include "settings/settings.h"
#include "tests/dialogs/toolkit_driver.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"
#include "toolkit/text_encoding.h"
#include "toolkit/window_preferences.h"

namespace {

using namespace taloram;
using namespace test_support;
using testing::HasSubstr;

// From the album maker's buttons to the album, by way of the book editor and its boxes.
class AlbumMaker : public testing::Test {
  protected:
    AlbumMaker() {
        EXPECT_TRUE(std::filesystem::create_directory(book_) && std::filesystem::create_directory(card_));
        EXPECT_TRUE(savecommenttxt(book_, "Book", "", ""));
        write_file(card_ + "/P1.JPG", make_camera_jpeg({.width = 160, .height = 120}, 1, true));
        write_file(card_ + "/P2.JPG", make_camera_jpeg({.width = 160, .height = 120, .seed = 2}, 1, true));
        g_global.from = card_;
        for (const char* choice : {"verify_copies", "leave_out"}) {
            window_preferences().set_flag("album maker", choice, false);
        }
    }
    ~AlbumMaker() override { EXPECT_TRUE(all_answered()); }

    // Runs the book editor; `choose` sees the album maker with all files selected, before its OK.
    void make_album(const Glib::ustring& name, const std::function<void(Gtk::Dialog&)>& choose = {}) {
        on_next_dialog([](Gtk::Dialog& editor) { click(editor, "New Album"); });
        on_next_dialog([name, choose](Gtk::Dialog& maker) {
            click(maker, "Update List");
            click(maker, "Invert Selection");
            const auto entries = find_all<Gtk::Entry>(maker);
            entries[1]->set_text(name);
            entries.back()->set_text("Title");
            if (choose) {
                choose(maker);
            }
            click(maker, "OK");
        });
    }
    void leave_editor() {
        on_next_dialog([](Gtk::Dialog& editor) { click(editor, "Cancel"); });
        errors_ = stderr_of([this] { edit_book(window_, book_); });
    }
    static void answer_list(e_message_local_t text, std::string& shown, const char* label) {
        on_next_dialog([text, &shown, label](Gtk::Dialog& box) {
            EXPECT_TRUE(shows_text(box, message_text(text)));
            shown = find_all<Gtk::TextView>(box).at(0)->get_buffer()->get_text();
            click(box, label);
        });
    }
    static bool is_active(Gtk::Dialog& maker, const char* label) {
        return dynamic_cast<Gtk::CheckButton&>(*find_button(maker, label)).get_active();
    }
    [[nodiscard]] bool has(const std::string& name) const { return std::filesystem::exists(book_ + "/" + name); }

    temp_dir_t dir_;
    std::string book_ = dir_ / "book";
    std::string card_ = dir_ / "card";
    std::string errors_;
    Gtk::Window window_;
};

TEST_F(AlbumMaker, verifies_and_lists_what_was_left_out) {
    write_file(card_ + "/broken.jpg", std::string("no photograph"));
    std::string shown;
    make_album("one", [](Gtk::Dialog& maker) {
        EXPECT_FALSE(is_active(maker, "Verify copies") || is_active(maker, "Leave out what fails"));
        click(maker, "Verify copies");
        click(maker, "Leave out what fails");
    });
    answer_list(msg_left_out, shown, "OK");
    make_album("two", [this](Gtk::Dialog& maker) {
        EXPECT_TRUE(is_active(maker, "Verify copies") && is_active(maker, "Leave out what fails")) << "as last used";
        click(maker, "broken.jpg");
        click(maker, "Verify copies");
    });
    leave_editor();
    EXPECT_EQ("broken.jpg: " + book_ + "/one/original/broken.jpg: Not a JPEG file: starts with 0x6e 0x6f", shown);
    EXPECT_TRUE(has("one/SHA256SUMS") && has("one/thumb/P2.JPG") && has("one/index.html"));
    EXPECT_TRUE(!has("one/original/broken.jpg") && has("two/thumb/P2.JPG") && !has("two/SHA256SUMS"));
}

TEST_F(AlbumMaker, goes_on_without_a_file_that_failed) {
    write_file(card_ + "/broken.jpg", std::string("no photograph"));
    make_album("one");
    answer_next(message_text(msg_album_failed) + "\n" + book_ +
                    "/one/original/broken.jpg: Not a JPEG file: starts with 0x6e 0x6f",
                "Leave it out and go on");
    leave_editor();
    EXPECT_TRUE(!has("one/original/broken.jpg") && has("one/thumb/P2.JPG") && has("one/index.html")) << errors_;
}

TEST_F(AlbumMaker, asks_before_files_are_replaced) {
    make_album("one");
    leave_editor();
    const std::string original = book_ + "/one/original/P2.JPG";
    write_file(card_ + "/P2.JPG", read_file(card_ + "/P1.JPG"));
    const blob_t before = read_file(original);
    std::string shown;
    make_album("one");
    answer_next("This album exists already. Add to it?", "Yes");
    answer_list(msg_replaces_files, shown, "No");
    on_next_dialog([&](Gtk::Dialog& maker) {
        EXPECT_EQ(before, read_file(original));
        click(maker, "OK");
    });
    answer_next("This album exists already. Add to it?", "Yes");
    answer_list(msg_replaces_files, shown, "Yes");
    make_album("one");
    answer_next("This album exists already. Add to it?", "Yes");  // the same files again: no other question
    leave_editor();
    EXPECT_EQ(original, shown);
    EXPECT_EQ(read_file(card_ + "/P1.JPG"), read_file(original));
}

TEST_F(AlbumMaker, marks_what_the_book_has) {
    std::filesystem::create_directories(book_ + "/travels/day one/original");
    std::filesystem::copy(card_ + "/P1.JPG", book_ + "/travels/day one/original/other name.jpg");
    write_file(card_ + "/P3.JPG", make_jpeg({}));
    MakeAlbumDialog maker(window_, card_, book_);
    EXPECT_FALSE(find_button(maker, "Select new")->is_sensitive()) << "nothing is listed";
    maker.show();
    wait_until([&] { return find_button(maker, "Select new")->is_sensitive(); });
    const std::string note = "Seems to be in this album already: travels/day one";
    EXPECT_EQ("P1.JPG\n" + note, find_button(maker, "P1.JPG")->get_tooltip_text());
    EXPECT_EQ(note, find_button(maker, "P1.JPG")->get_accessible()->get_description());
    EXPECT_EQ("P2.JPG", find_button(maker, "P2.JPG")->get_tooltip_text());
    click(maker, "P1.JPG");
    click(maker, "Select new");
    const std::vector<files_t> chosen = maker.selected_files();
    ASSERT_EQ(2U, chosen.size());
    EXPECT_EQ("P2.JPG", chosen[0].filename);

    const std::string nowhere = dir_ / "nowhere";
    MakeAlbumDialog other(window_, card_, nowhere);
    const std::string why = message_text(msg_book_not_searched) + "\n" + nowhere + ": getdirs() failed, ";
    click(other, "Update List");
    wait_until([&] { return find_button(other, "Select new")->get_tooltip_text().find(why) == 0; });
    EXPECT_FALSE(find_button(other, "Select new")->is_sensitive());
}

// The notice of a text that can't be read goes with the name of its album.
TEST_F(AlbumMaker, tells_of_an_unreadable_text_as_long_as_it_counts) {
    const std::string head = book_ + "/one/txt/head.txt";
    std::filesystem::create_directories(head);
    MakeAlbumDialog maker(window_, card_, book_);
    Gtk::Entry& name = *find_all<Gtk::Entry>(maker).at(1);
    const std::string notice = message_text(msg_text_unreadable) + "\n" + head + ": Is a directory";
    name.set_text("one");
    EXPECT_NE("", stderr_of([&] { EXPECT_FALSE(maker.leave_to(nullptr)); }));
    EXPECT_TRUE(shows_lines(maker, message_text(msg_nothing_listed) + "\n" + notice));
    static_cast<void>(stderr_of([&] { click(maker, "Update List"); }));
    EXPECT_TRUE(shows_text(maker, notice));
    name.set_text("two");
    maker.leave_to(nullptr);
    EXPECT_FALSE(shows_text(maker, notice));
}

}  // namespace
