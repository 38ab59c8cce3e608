#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <map>

#include "album/jobs.h"
#include "album/make_album.h"
#include "album/turn/turn_photo.h"
#include "tests/album/import_fixture.h"

namespace {

struct stop_test : import_fixture_t {
    stop_test() {
        for (const files_t& file : order.files) {
            put(card + "/" + file.filename, make_jpeg({.width = 100, .height = 80}));
        }
        order.files.push_back({"m.mov", 0});
        put(card + "/m.mov", std::string(size_t{1} << 21, 'm'));
    }

    // Stops the work at the question with this number, and holds for a moment before.
    static progress_signals_t stopping_at(unsigned number) {
        progress_signals_t signals;
        signals.wish = [number, asked = 0U]() mutable {
            return ++asked == 1 ? wish_t::hold : asked > number + 1 ? wish_t::stop : wish_t::go_on;
        };
        return signals;
    }
    // By path, without the time that pages tell.
    std::map<std::string, std::string> tree() const {
        std::map<std::string, std::string> files;
        for (const std::string& path : files_below(book)) {
            std::string& text = files[path.substr(book.size())] = text_of(path);
            if (const size_t time = text.find("HTML Generated: "); time != std::string::npos) {
                text.erase(time, text.find('\n', time) - time);
            }
        }
        return files;
    }
    void start_again() const {
        fs::remove_all(book);
        fs::create_directories(book + "/txt");
    }
    album_result_t make(progress_signals_t& signals) const {
        album_result_t result;
        lines = stderr_of([&] { result = make_album(order, signals); });
        return result;
    }
    bool is_unlocked() const {
        const int descriptor = open(order.album.c_str(), O_RDONLY | O_DIRECTORY);
        const bool is_free = !fs::exists(order.album) || flock(descriptor, LOCK_EX | LOCK_NB) == 0;
        close(descriptor);
        return is_free;
    }
    void expect_whole(const std::map<std::string, std::string>& reference) const {
        const auto found = tree();
        const auto page = found.find("/album/index.html");
        for (const auto& [path, contents] : found) {
            const bool may_lack =
                path.ends_with(".html") || path.ends_with("SHA256SUMS") || path.ends_with("count.txt");
            EXPECT_TRUE(may_lack || contents == reference.at(path)) << path;
        }
        for (const files_t& file : order.files) {
            const bool is_whole = found.count("/album/thumb/" + file.filename) != 0;
            EXPECT_TRUE(page == found.end() || !is_photo(file.filename) ||
                        (page->second.find(file.filename) != std::string::npos) == is_whole)
                << file.filename;
        }
    }

    const std::string book = dir / "book";
    album_order_t order{.source = card,
                        .files = {{"a.jpg", 1}, {"b.jpg", 0}, {"c.jpg", 0}},
                        .album = book + "/album",
                        .title = "Stopped",
                        .head = {},
                        .last = {},
                        .options = {.verify = true},
                        .is_in_book = true};
    mutable std::string lines;  // of the last import
};

TEST_F(stop_test, an_import_stops_anywhere_and_the_same_one_completes_it) {
    start_again();
    ASSERT_TRUE(make(unseen).is_made());
    const auto reference = tree();
    for (const unsigned jobs : {1U, 2U}) {
        g_workers.jobs = jobs;
        std::map<std::optional<stage_t>, unsigned> stopped_in;
        for (unsigned number = 0;; number += jobs == 1 ? 2 : 7) {
            SCOPED_TRACE(number);
            start_again();
            progress_signals_t signals = stopping_at(number);
            const album_result_t result = make(signals);
            EXPECT_EQ(lines, "");
            EXPECT_TRUE(is_unlocked());
            if (result.is_made()) {
                break;
            }
            EXPECT_TRUE(result.stopped);
            EXPECT_EQ(result.reason, "");
            ++stopped_in[result.import.failed];
            expect_whole(reference);
            EXPECT_TRUE(make(unseen).is_made());
            EXPECT_EQ(tree(), reference);
        }
        EXPECT_GE(stopped_in.size(), jobs == 1 ? 4U : 2U)
            << "before the import, in its copies, their verification and the sizes";
    }
    g_workers = {};
}

TEST_F(stop_test, of_replaced_files_no_old_sum_stays) {
    for (const files_t& file : order.files) {
        put(dir / "other/" + file.filename, make_jpeg({.width = 100, .height = 120}));
    }
    for (unsigned number = 0;; number += 2) {
        SCOPED_TRACE(number);
        start_again();
        ASSERT_TRUE(make(unseen).is_made());
        order.replace = replace_t::files;
        order.source = dir / "other";
        progress_signals_t signals = stopping_at(number);
        const album_result_t result = make(signals);
        EXPECT_EQ(verify().find("changed"), std::string::npos);
        order.source = card;
        if (result.is_made()) {
            break;
        }
    }
}

TEST_F(stop_test, updates_keep_what_is_done_and_turns_nothing) {
    start_again();
    ASSERT_TRUE(make(unseen).is_made());
    const auto reference = tree();
    const auto missing = [&] {
        return std::count_if(order.files.begin(), order.files.end(), [&](const files_t& file) {
            return is_photo(file.filename) && !fs::exists(thumb_path(order.album, file.filename));
        });
    };
    for (unsigned number = 0; number < 4; ++number) {
        for (const char* part : {"/thumb", "/size0", "/size1", "/size2"}) {
            fs::remove_all(order.album + part);
        }
        progress_signals_t signals = stopping_at(number);
        const update_result_t result = update_all(book, {}, signals);
        EXPECT_EQ(result.has_value() && result->stopped, number < 3) << number;
        EXPECT_EQ(missing(), 3 - number);
        expect_whole(tree());
    }
    EXPECT_FALSE(update_all(book, {}, unseen));
    for (unsigned number = 0; number < 3; ++number) {
        progress_signals_t signals = stopping_at(number);
        const bool is_last = number == 2;
        EXPECT_EQ(turn_photos(order.album, {"b.jpg", "c.jpg"}, 1, signals),
                  is_last ? turned_t::all : turned_t::stopped);
        EXPECT_EQ(tree().at("/album/size0/b.jpg") == reference.at("/album/size0/b.jpg"), !is_last);
    }
}

TEST_F(stop_test, a_verification_tells_how_far_it_is) {
    start_again();
    ASSERT_TRUE(make(unseen).is_made());
    progress_signals_t signals = stopping_at(10);  // in the second of the files
    signals.verify.connect([this](double fraction) { steps.push_back(fraction); });
    const verify_result_t stopped = verify_album(order.album, {}, signals);
    EXPECT_TRUE(stopped.stopped && !stopped.is_good);
    EXPECT_EQ(steps.size(), 1U);
    signals.wish = nullptr;
    EXPECT_TRUE(verify_album(order.album, {}, signals).is_good);
    EXPECT_EQ(steps.back(), 1);
}

}  // namespace
