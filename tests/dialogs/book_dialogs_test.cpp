#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <list>

#include "album/pages/book_index.h"
#include "album/texts/comment_store.h"
#include "album/write_lock.h"
#include "dialogs/edit_album_dialog.h"
#include "dialogs/edit_book_dialog.h"
#include "dialogs/make_album_dialog.h"
#include "dialogs/make_book_dialog.h"
#include "libutils/files/directory.h"
#include "settings/settings.h"
#include "tests/dialogs/toolkit_driver.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"
#include "toolkit/text_encoding.h"
#include "widgets/writer_box.h"

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
        const auto answer = [&old_card](const char* button) {
            on_next_dialog([&old_card, button](Gtk::Dialog& box) {
                EXPECT_TRUE(shows_text(box, to_toolkit(old_card) + "\n" + message_text(msg_removes_photos)));
                click(box, button);
            });
        };
        // A home that can hold no trash: the question comes again.
        const std::string trash = Glib::get_user_data_dir() + "/Trash";
        std::filesystem::create_directories(Glib::get_user_data_dir());
        write_file(trash, std::string());
        answer("Move to Trash");
        on_next_dialog([](Gtk::Dialog& box) {
            EXPECT_TRUE(shows_lines(box, message_text(msg_no_trash)));
            click(box, "OK");
        });
        answer("Cancel");
        click(dialog, "Remove " + to_toolkit(old_card));
        EXPECT_THAT(names(), Contains(old_card));
        answer("OK");
        click(dialog, "Remove " + to_toolkit(old_card));
        EXPECT_THAT(names(), ElementsAre("a", "b", "new; b", "txt"));
        std::filesystem::remove(trash);
        answer_next(message_text(msg_remove), "Move to Trash");
        click(dialog, "Remove new; b");
        EXPECT_THAT(names(), ElementsAre("a", "b", "txt"));
        EXPECT_EQ("was b", title_of(trash + "/files/new; b"));
        click(dialog, "OK");
    });
    edit_book(window_, book_);
    EXPECT_EQ("Journeys", title_of(book_));
}

TEST_F(BookDialogs, MakesBooks) {
    make_entry(book_ + "/summer", "Summer");
    std::filesystem::create_directory(book_ + "/summer/original");
    const auto named = [](const char* name, const char* button) {
        return [name, button](Gtk::Dialog& dialog) {
            type(dialog, 0, name);
            click(dialog, button);
        };
    };
    on_next_dialog(clicking("New Book"));
    on_next_dialog([this](Gtk::Dialog& dialog) {
        auto& maker = dynamic_cast<MakeBookDialog&>(dialog);
        EXPECT_TRUE(maker.button_update());  // the name was left empty
        EXPECT_EQ("Travels", find_all<Gtk::Entry>(dialog).at(1)->get_text());
        type(dialog, 0, "new");
        EXPECT_TRUE(maker.button_update());
        EXPECT_EQ("", find_all<Gtk::Entry>(dialog).at(1)->get_text()) << "another name's title";
        type(dialog, 1, "This year");
        answer_next(message_text(msg_outside_book) + "\n" + book_, "OK");
        maker.take_folder(dir_ / "elsewhere");
        EXPECT_EQ(maker.get_bookdir(), book_ + "/new") << "nothing of a folder that was refused";
        maker.take_folder(book_ + "/2025/spring");
        EXPECT_EQ("2025/spring", find_all<Gtk::Entry>(dialog).at(0)->get_text());
        type(dialog, 0, "");
        click(dialog, "OK");
    });
    answer_next(message_text(msg_title_missing) + "\n" + message_text(msg_book_name_missing), "OK");
    on_next_dialog(named("summer", "OK"));
    answer_next(message_text(msg_names_an_album), "OK");
    on_next_dialog(named("no/such", "OK"));
    answer_next("The texts could not be saved.", "OK");
    on_next_dialog([](Gtk::Dialog& dialog) {
        EXPECT_EQ("This year", find_all<Gtk::Entry>(dialog).at(1)->get_text()) << "kept by every refusal";
        type(dialog, 0, "2026 $HOME");
        click(dialog, "OK");
    });
    on_next_dialog(clicking("Cancel"));
    edit_book(window_, book_);
    EXPECT_EQ("This year", title_of(book_ + "/2026 $HOME"));
    EXPECT_EQ("Travels", title_of(book_));
    EXPECT_EQ("Summer", title_of(book_ + "/summer"));
    EXPECT_FALSE(std::filesystem::exists(book_ + "/index.html")) << "nobody pressed OK there";
    EXPECT_TRUE(std::filesystem::exists(book_ + "/2026 $HOME/index.html"));
}

TEST_F(BookDialogs, MakesAnAlbumAndRebuildsTheBook) {
    make_entry(book_ + "/sub", "Sub");
    make_entry(book_ + "/made before", "A book");
    EXPECT_TRUE(makehtmlbook(book_ + "/made before"));
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
    on_next_dialog(maker_with(1, "made before"));
    answer_next(message_text(msg_names_a_book), "OK");
    on_next_dialog([&](Gtk::Dialog& maker) {
        type_title(maker, "");  // that of an album that was named before, where the focus left the name meanwhile
        maker_with(1, "sub/day 1")(maker);
    });
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

TEST_F(BookDialogs, TellsWhatCouldNotBeMade) {
    write_file(g_global.from + "/broken.jpg", std::string("no photograph"));
    const auto fill_maker = [](const char* name) {
        return [name](Gtk::Dialog& maker) {
            click(maker, "Update List");
            click(maker, "Invert Selection");
            type(maker, 1, name);
            type_title(maker, "Broken");
            click(maker, "OK");
        };
    };
    const std::string original = book_ + "/broken/original/broken.jpg";
    const std::string reason = "\n" + original + ": Not a JPEG file: starts with 0x6e 0x6f";
    on_next_dialog(clicking("New Album"));
    on_next_dialog(fill_maker("broken"));
    answer_next(message_text(msg_album_failed) + reason, "OK");
    on_next_dialog(clicking("Save and Rebuild All"));
    answer_next(message_text(msg_update_failed) + reason, "OK");
    on_next_dialog(clicking("Photos broken"));
    on_next_dialog(clicking("OK"));
    answer_next(message_text(msg_album_failed) + reason, "OK");
    on_next_dialog([&](Gtk::Dialog& dialog) {
        std::filesystem::create_directory(book_ + "/index.html.keep");
        std::filesystem::remove(book_ + "/index.html");
        std::filesystem::rename(book_ + "/index.html.keep", book_ + "/index.html");
        click(dialog, "OK");
    });
    answer_next(message_text(msg_update_failed) + "\n" + book_ + "/index.html: write open error, Is a directory", "OK");
    EXPECT_THAT(stderr_of([this] { edit_book(window_, book_); }), testing::HasSubstr("shrink() failed.\n"));
    EXPECT_TRUE(std::filesystem::exists(original)) << "what was copied stays";
}

TEST_F(BookDialogs, KeepsTheAlbumMakerWhereThereIsNoRoom) {
    write_file(g_global.from + "/long.mov", std::string());
    std::filesystem::resize_file(g_global.from + "/long.mov", uintmax_t{1} << 43);
    on_next_dialog(clicking("New Album"));
    on_next_dialog([](Gtk::Dialog& maker) {
        click(maker, "Update List");
        click(maker, "Invert Selection");
        type(maker, 1, "full");
        type_title(maker, "Full");
        click(maker, "OK");
    });
    on_next_dialog([](Gtk::Dialog& box) {
        const std::string text = find_all<Gtk::Label>(box).at(0)->get_text();
        EXPECT_THAT(text, testing::MatchesRegex(message_text(msg_no_room) + "\n" + message_text(msg_room_missing) +
                                                " [0-9.]+ TiB"));
        click(box, "OK");
    });
    on_next_dialog([this](Gtk::Dialog& maker) {
        EXPECT_EQ(dynamic_cast<MakeAlbumDialog&>(maker).selected_files().size(), 3U);
        EXPECT_FALSE(std::filesystem::exists(book_ + "/full"));
        std::filesystem::resize_file(g_global.from + "/long.mov", 0);
        click(maker, "OK");  // with the choice that was made before
    });
    on_next_dialog(clicking("Cancel"));
    static_cast<void>(stderr_of([this] { edit_book(window_, book_); }));
    EXPECT_TRUE(std::filesystem::exists(book_ + "/full/movie/long.mov"));
}

// Rows far down have widgets only while they are seen; what was typed into one must not go with them.
TEST_F(BookDialogs, KeepsWhatWasTypedIntoRowsThatWereScrolledAway) {
    for (int i = 100; i < 220; ++i) {
        make_entry(book_ + "/" + std::to_string(i), "");
    }
    on_next_dialog([&](Gtk::Dialog& dialog) {
        const auto entry_of = [&](const std::string& name) -> Gtk::Entry* {
            for (Gtk::Entry* entry : find_all<Gtk::Entry>(dialog)) {
                if (entry->get_tooltip_text() == name) {
                    return entry;
                }
            }
            return nullptr;
        };
        const auto scroll_to = [&](double part) {
            const auto place = find_all<Gtk::ScrolledWindow>(dialog).at(1)->get_vadjustment();
            place->set_value(part * place->get_upper());
            settle();
        };
        settle();
        EXPECT_LT(find_all<Gtk::Entry>(dialog).size(), 60U);
        EXPECT_EQ(entry_of("160"), nullptr);
        scroll_to(0.5);
        ASSERT_NE(entry_of("160"), nullptr);
        entry_of("160")->set_text("renamed");
        scroll_to(0);
        EXPECT_EQ(entry_of("160"), nullptr);
        entry_of("219")->grab_focus();
        for (int i = 0; i < 3 * 70; ++i) {  // name, open, remove
            dialog.child_focus(Gtk::DIR_TAB_FORWARD);
            settle();
        }
        EXPECT_EQ(dialog.get_focus(), entry_of("149")) << "the keyboard goes through every row";
        click(dialog, "OK");
    });
    edit_book(window_, book_);
    EXPECT_FALSE(std::filesystem::exists(book_ + "/160"));
    EXPECT_TRUE(std::filesystem::exists(book_ + "/renamed/txt/head.txt"));
}

TEST_F(BookDialogs, OffersToCompleteAnInterruptedAlbum) {
    const std::string album = book_ + "/stopped";
    make_entry(album, "Stopped");
    std::filesystem::create_directory(album + "/original");
    std::filesystem::copy(card_ + "/P1.JPG", album + "/original/P1.JPG");
    const auto left_alone = [&](Gtk::Dialog& book) {
        EXPECT_EQ("Edit Book - stopped", book.get_title());
        EXPECT_FALSE(std::filesystem::exists(album + "/thumb"));
        click(book, "Cancel");
    };
    for (const char* answer : {"No", "Yes"}) {
        on_next_dialog(clicking("Photos stopped"));
        answer_next(message_text(msg_complete_album), answer);
        on_next_dialog(*answer == 'N' ? std::function<void(Gtk::Dialog&)>(left_alone) : [](Gtk::Dialog& editor) {
            EXPECT_NE(dynamic_cast<EditAlbumDialog*>(&editor), nullptr);
            click(editor, "Cancel");
        });
        on_next_dialog(clicking("Cancel"));
        edit_book(window_, book_);
    }
    EXPECT_TRUE(std::filesystem::exists(album + "/thumb/P1.JPG"));
}

TEST_F(BookDialogs, WaitsForAnotherProgramUntilCancelled) {
    const int other = open(book_.c_str(), O_RDONLY | O_DIRECTORY);
    g_wait_for_writer = wait_for_writer;
    for (const bool gives_up : {true, false}) {
        ASSERT_EQ(flock(other, LOCK_EX), 0);
        on_next_dialog([&](Gtk::Dialog& box) {
            EXPECT_TRUE(shows_text(box, message_text(msg_other_writer)));
            if (gives_up) {
                click(box, "Cancel");
            } else {
                flock(other, LOCK_UN);
            }
        });
        bool saved = false;
        static_cast<void>(stderr_of([&] { saved = savecommenttxt(book_, "Later", "", ""); }));
        EXPECT_NE(saved, gives_up);
        EXPECT_EQ(title_of(book_), gives_up ? "Travels" : "Later");
        wait_until([] { return gtk_grab_get_current() == nullptr; });
    }
    g_wait_for_writer = nullptr;
    close(other);
}

}  // namespace
