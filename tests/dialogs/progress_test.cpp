#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <deque>
#include <filesystem>

#include "album/texts/comment_store.h"
#include "dialogs/edit_book_dialog.h"
#include "dialogs/view_album_dialog.h"
#include "settings/settings.h"
#include "tests/dialogs/toolkit_driver.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"
#include "toolkit/text_encoding.h"
#include "widgets/work_pace.h"

namespace {

namespace fs = std::filesystem;
using namespace taloram;
using namespace test_support;
using std::chrono::steady_clock;

constexpr unsigned tick = 10;  // milliseconds

// Plays the user in front of the progress window: each step is tried again, tick by tick, until it returns true.
class progress_user_t {
  public:
    using step_t = std::function<bool(Gtk::Dialog& window)>;

    explicit progress_user_t(std::deque<step_t> steps) : steps_(std::move(steps)) {
        timer_ = Glib::signal_timeout().connect([this] { return look(); }, tick);
    }
    ~progress_user_t() {
        timer_.disconnect();
        EXPECT_TRUE(steps_.empty()) << steps_.size() << " steps were not reached";
    }
    progress_user_t(const progress_user_t&) = delete;
    progress_user_t& operator=(const progress_user_t&) = delete;

    // Between two looks at the window.
    [[nodiscard]] steady_clock::duration longest_gap() const { return longest_gap_; }

  private:
    bool look() {
        for (Gtk::Window* window : Gtk::Window::list_toplevels()) {
            if (window->get_title() != "progress window" || !window->get_mapped()) {
                continue;
            }
            const auto now = steady_clock::now();
            longest_gap_ = std::max(longest_gap_, now - std::exchange(last_, now));
            if (!steps_.empty() && steps_.front()(dynamic_cast<Gtk::Dialog&>(*window))) {
                steps_.pop_front();
            }
            return true;
        }
        last_ = steady_clock::now();
        return true;
    }

    std::deque<step_t> steps_;
    sigc::connection timer_;
    steady_clock::time_point last_ = steady_clock::now();
    steady_clock::duration longest_gap_{};
};

bool close(Gtk::Dialog& window) {
    GdkEvent* event = gdk_event_new(GDK_DELETE);
    event->any.window = GDK_WINDOW(g_object_ref(window.get_window()->gobj()));
    gtk_main_do_event(event);
    gdk_event_free(event);
    return true;
}

progress_user_t::step_t clicking(const char* label) {
    return [label](Gtk::Dialog& window) {
        click(window, label);
        return true;
    };
}

class ProgressWindow : public testing::Test {
  protected:
    ProgressWindow() {
        fs::create_directories(book_);
        EXPECT_TRUE(savecommenttxt(book_, "Travels", "", ""));
        fs::create_directories(card_);
        g_global.from = card_;
    }
    ~ProgressWindow() override { EXPECT_TRUE(all_answered()); }

    void make_card(int photos) {
        for (int i = 0; i < photos; ++i) {
            write_file(card_ + "/" + std::to_string(i) + ".JPG", make_jpeg({.width = 1600, .height = 1200}));
        }
    }
    [[nodiscard]] size_t made(const char* kind) const { return files_below(album_ + "/" + kind).size(); }

    // In the book's editor a new album of the whole card, then `afterwards`.
    void import(const std::function<void(Gtk::Dialog&)>& afterwards) {
        on_next_dialog([](Gtk::Dialog& dialog) { click(dialog, "New Album"); });
        on_next_dialog([](Gtk::Dialog& maker) {
            click(maker, "Update List");
            click(maker, "Invert Selection");
            find_all<Gtk::Entry>(maker).at(1)->set_text("day");
            for (Gtk::Entry* entry : find_all<Gtk::Entry>(maker)) {
                if (entry->get_accessible()->get_name() == "Title") {
                    entry->set_text("Day");
                }
            }
            click(maker, "OK");
        });
        on_next_dialog(afterwards);
        edit_book(window_, book_);
    }

    temp_dir_t dir_;
    const std::string book_ = dir_ / "book", album_ = book_ + "/day", card_ = dir_ / "card";
    Gtk::Window window_;
};

TEST_F(ProgressWindow, PausesContinuesAndStops) {
    make_card(14);
    size_t held_at = 0;
    steady_clock::time_point held_since;
    const auto has_some = [this](Gtk::Dialog&) { return made("thumb") >= 2; };
    const auto has_settled = [&](Gtk::Dialog& window) {
        EXPECT_TRUE(shows_text(window, message_text(msg_paused)));
        if (made("thumb") != std::exchange(held_at, made("thumb"))) {
            held_since = steady_clock::now();
        }
        return steady_clock::now() > held_since + std::chrono::milliseconds(1500);
    };
    const auto goes_on = [&](Gtk::Dialog&) { return made("thumb") > held_at; };
    const auto asks = [](const char* answer, const progress_user_t::step_t& ask) {
        return [=](Gtk::Dialog& window) {
            answer_next(message_text(msg_stop_work), answer);
            return ask(window);
        };
    };
    progress_user_t user({has_some, clicking("Pause"), has_settled, clicking("Continue"), goes_on,
                          asks("No", clicking("Stop")), asks("Yes", close)});
    import([this](Gtk::Dialog& dialog) {  // no box about a failure comes before
        EXPECT_LT(made("thumb"), 14U);
    EXPECT_EQ(made("original"), 14U);
    const blob_t page = read_file(album_ + "/index.html");
    const std::string text(page.begin(), page.end());
    for (int i = 0; i < 14; ++i) {
        const std::string name = "/" + std::to_string(i) + ".JPG";
        EXPECT_EQ(text.find(name) != std::string::npos, fs::exists(album_ + "/thumb" + name)) << name;
    }
    on_next_dialog([](Gtk::Dialog& editor) { click(editor, "Cancel"); });
    click(dialog, "Save and Rebuild All");
});
EXPECT_EQ(made("thumb"), 14U);
}  // namespace

// Under failing_calls each time that a movie is opened takes a second.
TEST_F(ProgressWindow, StaysAwakeOnASlowDisk) {
    if (std::getenv("FAILING_CALLS") == nullptr) {
        GTEST_SKIP() << "needs tests/support/failing_calls";
    }
    write_file(card_ + "/M.MOV", std::string("movie"));
    const auto start = steady_clock::now();
    progress_user_t user({});
    import([](Gtk::Dialog& dialog) { click(dialog, "Cancel");
});
EXPECT_EQ(made("movie"), 1U);
EXPECT_GT(steady_clock::now() - start, std::chrono::seconds(2));
EXPECT_LT(user.longest_gap(), std::chrono::milliseconds(500));
}

TEST(WorkPace, CountsWhatWasMeasured) {
    using seconds_t = std::chrono::duration<double>;
    const steady_clock::time_point start{};
    work_pace_t pace;
    const auto note = [&](stage_t stage, size_t files, double bytes, double seconds) {
        pace.note({stage, files, 40, bytes, 4000},
                  start + std::chrono::duration_cast<steady_clock::duration>(seconds_t(seconds)));
    };
    const auto text = [&](double seconds) {
        return pace_text(pace, start + std::chrono::duration_cast<steady_clock::duration>(seconds_t(seconds)));
    };
    note(stage_t::copy, 0, 0, 0);
    note(stage_t::copy, 1, 400, 5);
    EXPECT_EQ(text(5), "1 of 40 files") << "one file tells nothing";
    note(stage_t::sizes, 0, 0, 10);
    note(stage_t::sizes, 1, 100, 12);
    note(stage_t::sizes, 11, 1000, 14);
    EXPECT_EQ(text(14), "11 of 40 photographs, 2.8 a second, about 12 s left") << "by bytes";
    EXPECT_EQ(text(16), "11 of 40 photographs, 2.8 a second, about 10 s left");
    pace.held(std::chrono::seconds(100));
    note(stage_t::sizes, 12, 1000, 116);
    EXPECT_EQ(text(116), "12 of 40 photographs, 2.0 a second, about 18 s left") << "not by the time of the pause";
    pace.note({}, start);
    EXPECT_EQ(text(200), "");
    note(stage_t::sizes, 0, 0, 200);
    EXPECT_EQ(text(200), "0 of 40 photographs, 2.0 a second, about 24 s left") << "of the next album";
}

TEST_F(ProgressWindow, StopsACheckInTheMiddleOfAFile) {
    fs::create_directories(album_ + "/original");
    fs::create_directories(album_ + "/movie");
    const std::string movie = album_ + "/movie/large.mov";
    write_file(movie, std::string());
    fs::resize_file(movie, uintmax_t{1} << 36);  // takes a minute to read
    write_file(album_ + "/SHA256SUMS", std::string(64, '0') + "  movie/large.mov\n");
    ViewAlbumDialog viewer(window_, album_, "");
    viewer.show();
    const progress_user_t user({clicking("Stop")});
    on_next_dialog([](Gtk::Dialog& result) {
        EXPECT_TRUE(shows_text(result, message_text(msg_check_stopped) + " 0"));
        click(result, "Close");
    });
    click(viewer, "Check Originals");
}

}  // namespace
