#include "app/menu_window.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "settings/settings.h"
#include "settings/settings_file.h"
#include "tests/dialogs/toolkit_driver.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"
#include "toolkit/text_encoding.h"
#include "widgets/guide.h"

namespace {

using namespace taloram;
using namespace test_support;

class MainWindow : public testing::Test {
  protected:
    MainWindow() {
        g_global.album = album_;
        std::filesystem::create_directory(album_);
        saveini("", "taloram");
    }
    ~MainWindow() override {
        EXPECT_TRUE(all_answered());
        g_global = global_t();
    }

    void make_entry(const std::string& name, const std::string& title, const std::string& count) const {
        std::filesystem::create_directories(album_ + "/" + name + "/txt");
        write_file(album_ + "/" + name + "/txt/head.txt", title + "\r\n" + title + "\r\nfirst\r\nsecond\r\n");
        if (!count.empty()) {
            std::filesystem::create_directories(album_ + "/" + name + "/original");
            write_file(album_ + "/" + name + "/txt/count.txt", count);
        }
    }
    // "column:text" of every widget of the list's row.
    static std::vector<std::string> row(Gtk::Widget& window, guint number) {
        std::vector<std::string> cells;
        Gtk::Table* table = find_all<Gtk::Table>(window).at(0);
        for (Gtk::Widget* cell : table->get_children()) {
            guint left = 0;
            guint top = 0;
            gtk_container_child_get(table->Gtk::Container::gobj(), cell->gobj(), "left-attach", &left, "top-attach",
                                    &top, nullptr);
            if (top == number) {
                cells.push_back(std::to_string(left) + ":" + find_all<Gtk::Label>(*cell).at(0)->get_text().raw());
            }
        }
        return cells;
    }
    [[nodiscard]] MenuWindow* open(std::vector<std::string> words = {}) {
        words.insert(words.begin(), TALORAM_CATALOGUES "/taloram");
        for (std::string& word : words_ = words) {
            argv_.push_back(word.data());
        }
        window_ = std::make_unique<MenuWindow>(static_cast<int>(argv_.size()), argv_.data());
        return window_.get();
    }

    temp_dir_t dir_;
    std::string album_ = dir_ / "my album;";
    std::vector<std::string> words_;
    std::vector<char*> argv_;
    std::unique_ptr<MenuWindow> window_;
};

TEST_F(MainWindow, ListsAlbumsAndBooksBackwards) {
    make_entry("1 album", "An album", "2/5 \n");
    make_entry("2 book", "A book", "");
    std::filesystem::create_directory(album_ + "/3 without texts");
    MenuWindow& window = *open();
    EXPECT_EQ(window.get_title(), "taloram - Photo Albums");
    using testing::UnorderedElementsAre;
    EXPECT_THAT(row(window, 0), UnorderedElementsAre("0:2 book", "2:Open Book", "4:", "5:A book", "6:first"));
    EXPECT_THAT(row(window, 1),
                UnorderedElementsAre("0:1 album", "2:Photos", "3:Viewer", "4:2/5", "5:An album", "6:first"));
    EXPECT_THAT(row(window, 2), testing::IsEmpty());
    EXPECT_EQ(find_button(window, "Move"), nullptr);
    EXPECT_EQ(find_button(window, "Delete"), nullptr);
    click(window, "Viewer");  // nothing to show yet, so not a word
    for (const char* made : {"/1 album/original/small.jpg", "/1 album/size1"}) {
        std::filesystem::copy_file(g_global.album + "/1 album/txt/head.txt", album_ + made);
        answer_next(message_text(msg_no_viewer), "OK");
        click(window, "Viewer");
    }
    answer_next(message_text(msg_not_opened) + "\n" + album_ + "/index.html", "OK");
    click(window, "Open in Browser");
}

TEST_F(MainWindow, SaysWhatToDoWithoutAlbums) {
    EXPECT_TRUE(shows_text(*open(), message_text(msg_no_albums)));
    std::filesystem::remove(album_);
    EXPECT_FALSE(window_->make_items());
    EXPECT_TRUE(shows_text(*window_, message_text(msg_no_directory)));
}

TEST_F(MainWindow, TellsWhichTextsCantBeRead) {
    const std::string own = album_ + "/txt/head.txt";
    const std::string below = album_ + "/1/txt/head.txt";
    std::filesystem::create_directories(own);
    std::filesystem::create_directories(below);
    EXPECT_TRUE(shows_text(*open(), message_text(msg_text_unreadable) + " " + below));
    EXPECT_EQ(find_all<Gtk::TextView>(*window_).at(0)->get_buffer()->get_text(),
              message_text(msg_text_unreadable) + "\n" + own);
}

TEST_F(MainWindow, FitsTheScreenWithManyLongRows) {
    for (int i = 0; i < 60; ++i) {
        make_entry(std::to_string(i) + std::string(150, 'n'), std::string(300, 't'), "1/1\n");
    }
    MenuWindow& window = *open();
    window.show();
    for (int i = 0; i < 20; ++i) {
        settle();
        g_usleep(10'000);
    }
    EXPECT_LE(window.get_width(), 1280);
    EXPECT_LE(window.get_height(), 800);
    EXPECT_GE(find_all<Gtk::ScrolledWindow>(window).at(1)->get_height(), 400);
}

TEST_F(MainWindow, TakesPathsFromTheCommandLineForOneRun) {
    make_entry("entry", "title", "");
    saveini("", "taloram");
    EXPECT_TRUE(shows_text(*open({"/card", dir_ / "elsewhere"}), message_text(msg_no_directory)));
    EXPECT_EQ(g_global.from, "/card");
    g_stored_paths.from = "/mnt/stored";
    on_next_dialog([this](Gtk::Dialog& options) {
        find_all<Gtk::Entry>(options).at(1)->set_text(dir_ / "chosen");
        click(options, "OK");
    });
    click(*window_, "Options");
    EXPECT_EQ(g_global.from, "/card");
    EXPECT_TRUE(loadini("", "taloram"));
    EXPECT_EQ(g_global.from, "/mnt/stored") << "the entry was left alone";
    EXPECT_EQ(g_global.album, dir_ / "chosen");
    g_stored_paths = {};
}

TEST_F(MainWindow, TakesASourceThatIsDroppedOrPluggedIn) {
    for (const char* name : {"DCIM/100A", "DCIM/101B", "DCIM/102EMPTY"}) {
        std::filesystem::create_directories(dir_ / name);
    }
    write_file(dir_ / "DCIM/100A/1.JPG", std::string());
    write_file(dir_ / "DCIM/101B/a b.MOV", std::string());
    const std::string stored = g_global.from;
    open({"--card", dir_.path()})->show();
    EXPECT_EQ(g_global.from, dir_ / "DCIM/101B");
    struct case_t {
        std::string dropped;
        std::string source;
    };
    for (const case_t& c : {case_t{dir_ / "DCIM", dir_ / "DCIM"}, {dir_ / "DCIM/101B/a b.MOV", dir_ / "DCIM/101B"}}) {
        drop(*window_, c.dropped);
        EXPECT_EQ(g_global.from, c.source);
        EXPECT_TRUE(shows_text(*window_, message_text(msg_source_now) + " " + c.source));
    }
    saveini("", "taloram");
    EXPECT_TRUE(loadini("", "taloram"));
    EXPECT_EQ(g_global.from, stored) << "it was for this run";
    g_stored_paths = {};
}

TEST_F(MainWindow, TakesTheKeysOfEveryWindow) {
    make_entry("1 album", "An album", "1\n");
    make_entry("2 book", "A book", "");
    make_entry("2 book/3 album", "Below", "1\n");
    MenuWindow& window = *open();
    window.show();
    on_next_dialog([](Gtk::Dialog& album) { press_key(album, GDK_KEY_w, GDK_CONTROL_MASK); });
    click(window, "Photos");
    EXPECT_TRUE(window.get_visible());

    g_guide = dir_ / "guide.html";
    answer_next(message_text(msg_not_opened) + "\n" + g_guide, "OK");
    press_key(window, GDK_KEY_F1);
    on_next_dialog([](Gtk::Dialog& about) {
        EXPECT_TRUE(shows_text(about, TALORAM_VERSION));
        press_key(about, GDK_KEY_Escape);
    });
    auto* const menu = dynamic_cast<Gtk::MenuButton*>(find_button(window, "Help"));
    ASSERT_NE(menu, nullptr);
    dynamic_cast<Gtk::MenuItem*>(menu->get_popup()->get_children().back())->activate();

    // From the innermost window, out of all.
    on_next_dialog([](Gtk::Dialog& book) { click(book, "Photos"); });
    on_next_dialog([](Gtk::Dialog& album) { press_key(album, GDK_KEY_Q, GDK_CONTROL_MASK); });
    click(window, "Open Book");
    wait_until([&window] { return !window.get_visible(); });
}

TEST_F(MainWindow, FirstStartAsksForTheOptions) {
    std::filesystem::remove(inifile("", "taloram"));
    on_next_dialog([](Gtk::Dialog& dialog) {
        EXPECT_EQ(dialog.get_title(), "Options");
        click(dialog, "OK");
    });
    EXPECT_TRUE(shows_text(*open(), message_text(msg_no_albums)));
    EXPECT_TRUE(std::filesystem::exists(inifile("", "taloram")));
}

}  // namespace
