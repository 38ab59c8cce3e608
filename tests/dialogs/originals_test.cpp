#include <gmock/gmock.h>

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
namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr const char* photo = "/original/p.jpg";
constexpr const char* movie = "/movie/m.mov";

// A book with an album whose import was verified.
class Originals : public testing::Test {
  protected:
    Originals() {
        for (const char* name : {"/txt", "/card"}) {
            fs::create_directories(book_ + name);
        }
        fs::create_directories(album_ + "/txt");
        write_file(book_ + "/card/p.jpg", make_jpeg({}));
        write_file(book_ + "/card/m.mov", std::string(1 << 20, 'm'));
        progress_signals_t unseen;
        EXPECT_TRUE(import_album(book_ + "/card", {{"m.mov"}, {"p.jpg"}}, album_, {.verify = true}, unseen).is_done());
        fs::remove_all(book_ + "/card");
    }

    // What a press of the button in a viewer shows.
    template <typename Viewer>
    std::string check(
        const std::string& directory, const std::function<void(Viewer&)>& before = [](Viewer&) {}) {
        std::string text;
        Viewer viewer(window_, directory, "");
        viewer.show();
        before(viewer);
        on_next_dialog([&text](Gtk::Dialog& result) {
            for (const Gtk::Label* label : find_all<Gtk::Label>(*result.get_content_area())) {
                text += label->get_text() + "\n";
            }
            for (Gtk::TextView* view : find_all<Gtk::TextView>(result)) {
                text += view->get_buffer()->get_text();
            }
            click(result, "Close");
        });
        static_cast<void>(stderr_of([&] { click(viewer, "Check Originals"); }));
        EXPECT_TRUE(all_answered());
        return text;
    }

    const temp_dir_t dir_;
    const std::string book_ = dir_ / "b;ook";
    const std::string album_ = book_ + "/summer";
    Gtk::Window window_;
};

TEST_F(Originals, tell_what_became_of_them) {
    const std::string sums = album_ + "/SHA256SUMS";
    struct case_t {
        const char* name;
        std::function<void()> happened;
        std::vector<std::string> shown;
    };
    const case_t cases[] = {
        {"nothing", [] {}, {message_text(msg_as_imported) + " 2\n", message_text(msg_sums_written) + " "}},
        {"one byte",
         [this] {
             blob_t bytes = read_file(album_ + photo);
             bytes.back() ^= 1;
             write_file(album_ + photo, bytes);
         },
         {message_text(msg_flaws_found), album_ + photo + ": changed\n"}},
        {"another photograph",
         [this] { write_file(album_ + "/original/q.jpg", make_jpeg({})); },
         {album_ + photo + ": changed\n", album_ + "/original/q.jpg: " + message_text(msg_flaw_unlisted)}},
        {"a lost movie",
         [this] { fs::remove(album_ + movie); },
         {album_ + movie + ": missing\n", album_ + photo + ": changed\n"}},
        {"no file under the name",
         [this] { fs::create_directory(album_ + movie); },
         {album_ + movie + ": can't be read: "}},
        {"sums that are none", [&] { write_file(sums, std::string("sums\n")); }, {sums + ": line 1 is not a sum"}},
        {"no sums", [&] { fs::remove(sums); }, {message_text(msg_no_sums) + "\n"}},
    };
    for (const case_t& happening : cases) {
        SCOPED_TRACE(happening.name);
        happening.happened();
        const std::string shown = check<ViewAlbumDialog>(album_);
        for (const std::string& line : happening.shown) {
            EXPECT_THAT(shown, HasSubstr(line));
        }
    }
}

TEST_F(Originals, of_a_book_are_those_of_all_albums_below) {
    EXPECT_THAT(check<ViewBookDialog>(book_), HasSubstr(message_text(msg_as_imported) + " 2\n"));
    fs::create_directories(book_ + "/sub/txt");
    fs::copy(album_, book_ + "/sub/winter", fs::copy_options::recursive);
    EXPECT_THAT(check<ViewBookDialog>(book_), HasSubstr(message_text(msg_as_imported) + " 4\n"));
    fs::remove(book_ + "/sub/winter/SHA256SUMS");
    fs::remove(album_ + movie);
    const std::string shown = check<ViewBookDialog>(book_);
    EXPECT_THAT(shown, HasSubstr(album_ + movie + ": missing\n"));
    EXPECT_THAT(shown, HasSubstr(book_ + "/sub/winter\n" + message_text(msg_no_sums)));
}

}  // namespace
