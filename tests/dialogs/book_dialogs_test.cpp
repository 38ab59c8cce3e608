#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <list>

#include "album/comment_store.h"
#include "dialogs/edit_book_dialog.h"
#include "libutils/directory.h"
#include "settings/settings.h"
#include "tests/dialogs/toolkit_driver.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"
#include "toolkit/text_encoding.h"

namespace {

using namespace taloram;
using namespace test_support;
using testing::Contains;
using testing::ElementsAre;

class BookDialogs : public testing::Test {
  protected:
    BookDialogs() {
        make_entry(book_, "Travels");
        std::filesystem::create_directories(card_);
        for (const char* name : {"P1.JPG", "P2.JPG"}) {
            write_file(card_ + "/" + name, make_camera_jpeg({.width = 160, .height = 120}, 1, true));
        }
        g_global.from = card_;
    }
    ~BookDialogs() override { EXPECT_TRUE(all_answered()); }

    static void make_entry(const std::string& path, const std::string& title) {
        std::filesystem::create_directories(path);
        EXPECT_TRUE(savecommenttxt(path, title, title + " head\r\nsecond\r\n", "last\r\n"));
    }
    static std::string title_of(const std::string& path) {
        comment_texts_t texts;
        loadcommenttxt(path, texts.title, texts.head, texts.last);
        return texts.title;
    }
    [[nodiscard]] std::vector<std::string> names() const {
        std::list<std::string> names;
        EXPECT_TRUE(libutils::getdirs(names, book_.c_str()));
        return {names.begin(), names.end()};
    }
    // In the editor entry 0 is the book's title, the others are the rows' names from the last to the first.
    static void type(Gtk::Dialog& dialog, size_t entry, const Glib::ustring& text) {
        find_all<Gtk::Entry>(dialog).at(entry)->set_text(text);
    }
    static void type_title(Gtk::Dialog& dialog, const Glib::ustring& title) {
        for (Gtk::Entry* entry : find_all<Gtk::Entry>(dialog)) {
            if (entry->get_accessible()->get_name() == "Title") {
                entry->set_text(title);
            }
        }
    }
    static std::function<void(Gtk::Dialog&)> clicking(const char* label) {
        return [label](Gtk::Dialog& dialog) { click(dialog, label); };
    }

    temp_dir_t dir_;
    std::string book_ = dir_ / "my books; all";
    std::string card_ = dir_ / "card 1;2";
    Gtk::Window window_;
};

TEST_F(BookDialogs, ListsEntries) {
    make_entry(book_ + "/a", "Alps");
    make_entry(book_ + "/b/original", "");
    make_entry(book_ + "/b", "Berlin");
    write_file(book_ + "/b/txt/count.txt", std::string("2 \n"));
    write_file(book_ + "/a/txt/count.txt", std::string("7\n"));
    std::filesystem::create_directories(book_ + "/c");
    EditBookDialog dialog(window_, book_);
    std::vector<std::string> cells;
    for (Gtk::Widget* cell : find_all<Gtk::Table>(dialog).at(0)->get_children()) {
        if (auto* entry = dynamic_cast<Gtk::Entry*>(cell)) {
            cells.push_back(entry->get_text());
        } else if (auto* label = find_all<Gtk::Label>(*cell).at(0)) {
            cells.push_back(label->get_text());
        }
    }
    std::sort(cells.begin(), cells.end());
    EXPECT_THAT(cells, ElementsAre("", "2", "Alps", "Alps head", "Berlin", "Berlin head", "Edit Book", "Photos",
                                   "Remove", "Remove", "a", "b"));
    EXPECT_EQ("b", find_all<Gtk::Entry>(dialog).at(2)->get_text());
}

TEST_F(BookDialogs, RenamesAndRemovesTheRightEntries) {
    const std::string old_card = "\x8e\xca";  // no text in this locale
    for (const std::string& name : {std::string("a"), std::string("b"), std::string("c"), old_card}) {
        make_entry(book_ + "/" + name, "was " + name);
    }
    on_next_dialog([&](Gtk::Dialog& dialog) {  // rows: the old card's, c, b, a
        type(dialog, 0, "");
        type(dialog, 1, "x/y");
        type(dialog, 2, "new; b");
        type(dialog, 3, "b");
        click(dialog, "OK");
    });
    answer_next("Please enter a title.", "OK");
    answer_next(message_text(msg_rename_refused) + "\na \u2192 x/y", "OK");
    on_next_dialog([&](Gtk::Dialog& dialog) {  // once more, since there is no title
        EXPECT_EQ("", find_all<Gtk::Entry>(dialog).at(0)->get_text());
        EXPECT_EQ("Travels", title_of(book_));
        EXPECT_THAT(names(), ElementsAre("a", "b", "new; b", "txt", old_card));
        EXPECT_EQ("was c", title_of(book_ + "/b"));
        type(dialog, 0, "Journeys");
        for (const char* answer : {"Cancel", "OK"}) {
            EXPECT_THAT(names(), Contains(old_card));
            answer_next("Remove", answer);
            click(dialog, "Remove " + to_toolkit(old_card));
        }
        EXPECT_THAT(names(), ElementsAre("a", "b", "new; b", "txt"));
        click(dialog, "OK");
    });
    edit_book(window_, book_);
    EXPECT_EQ("Journeys", title_of(book_));
}

TEST_F(BookDialogs, MakesBooks) {
    on_next_dialog(clicking("New Book"));
    on_next_dialog(clicking("OK"));
    answer_next("Please enter a title.", "OK");
    on_next_dialog([](Gtk::Dialog& dialog) {
        type(dialog, 0, "no/such");
        click(dialog, "Apply");
    });
    answer_next("The texts could not be saved.", "OK");
    on_next_dialog([](Gtk::Dialog& dialog) {
        type(dialog, 0, "2026 $HOME");
        type(dialog, 1, "This year");
        click(dialog, "OK");
    });
    on_next_dialog(clicking("Cancel"));
    edit_book(window_, book_);
    EXPECT_EQ("This year", title_of(book_ + "/2026 $HOME"));
    EXPECT_EQ("Travels", title_of(book_));
    EXPECT_TRUE(std::filesystem::exists(book_ + "/2026 $HOME/index.html"));
}

TEST_F(BookDialogs, MakesAnAlbumAndRebuildsTheBook) {
    make_entry(book_ + "/sub", "Sub");
    const auto maker_with = [](size_t entry, const char* text) {
        return [entry, text](Gtk::Dialog& maker) {
            type(maker, entry, text);
            click(maker, "OK");
        };
    };
    const auto titled = [](const char* title) {
        return [title](Gtk::Dialog& maker) {
            type_title(maker, title);
            click(maker, "OK");
        };
    };
    on_next_dialog(clicking("New Album"));
    on_next_dialog(clicking("OK"));
    answer_next("Please select at least one photograph or movie.", "OK");
    on_next_dialog([&](Gtk::Dialog& maker) {
        click(maker, "Update List");
        click(maker, "Invert Selection");
        maker_with(0, "")(maker);
    });
    answer_next("Please choose the directory to take the photographs from.", "OK");
    on_next_dialog([&](Gtk::Dialog& maker) {
        type(maker, 0, g_global.from);
        maker_with(1, "")(maker);
    });
    answer_next("Please enter a name for the album.", "OK");
    on_next_dialog(maker_with(1, ".."));
    answer_next("Please enter a name for the album.", "OK");
    on_next_dialog(maker_with(1, "sub"));
    answer_next("This album exists already. Add to it?", "No");
    on_next_dialog(maker_with(1, "sub/day 1"));
    answer_next("Please enter a title.", "OK");
    on_next_dialog(titled("Day one"));
    on_next_dialog([&](Gtk::Dialog& dialog) {
        EXPECT_EQ("Day one", title_of(book_ + "/sub/day 1"));
        std::filesystem::remove(book_ + "/sub/day 1/thumb/P2.JPG");
        std::filesystem::remove(book_ + "/sub/index.html");
        click(dialog, "Save and Rebuild All");
    });
    on_next_dialog(clicking("Cancel"));
    edit_book(window_, book_);
    for (const char* made : {"/index.html", "/sub/index.html", "/sub/day 1/index.html", "/sub/day 1/thumb/P2.JPG"}) {
        EXPECT_TRUE(std::filesystem::exists(book_ + made)) << made;
    }
}

TEST_F(BookDialogs, TellsWhenAnAlbumCantBeMade) {
    write_file(g_global.from + "/broken.jpg", std::string("no photograph"));
    const auto fail_to_make = [this](const char* name, const char* message) {
        on_next_dialog(clicking("New Album"));
        on_next_dialog([name](Gtk::Dialog& maker) {
            click(maker, "Update List");
            click(maker, "Invert Selection");
            type(maker, 1, name);
            type_title(maker, "Broken");
            click(maker, "OK");
        });
        answer_next(message, "OK");
        on_next_dialog(clicking("Cancel"));
        return stderr_of([this] { edit_book(window_, book_); });
    };
    EXPECT_THAT(fail_to_make("broken", "The album could not be made."), testing::EndsWith("shrink() failed.\n"));
    EXPECT_TRUE(std::filesystem::exists(book_ + "/broken/original/broken.jpg")) << "what was copied stays";

    write_file(g_global.from + "/long.mov", std::string());
    std::filesystem::resize_file(g_global.from + "/long.mov", uintmax_t{1} << 43);
    EXPECT_THAT(fail_to_make("full", "There is not enough free space for this album. Nothing was copied."),
                testing::EndsWith(" TiB more free space is needed for this import.\n"));
    EXPECT_FALSE(std::filesystem::exists(book_ + "/full"));
}

}  // namespace
