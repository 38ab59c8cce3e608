#include "viewer/viewer_window.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "tests/dialogs/toolkit_driver.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

namespace {

using namespace talovue;
using namespace test_support;
using testing::HasSubstr;
using testing::Not;

class ViewerWindow : public testing::Test {
  protected:
    void SetUp() override {
        exif_builder_t camera;
        camera.text(exif_builder_t::ifd0, 0x010F, "Maker").text(exif_builder_t::ifd0, 0x0110, "Model 1");
        write_file(dir_ / "a.jpg", make_jpeg({.width = 3000, .height = 2000, .segments = {{0xE1, camera.app1()}}}));
        write_file(dir_ / "b.jpg", std::string("junk"));
        write_file(dir_ / "c <i>.jpg", make_camera_jpeg({}, 6, false));
        write_file(dir_ / "d.jpg", make_jpeg({.width = 40, .height = 30}));
    }

    viewer_window_t& open(const std::string& name) {
        picture_list_t list;
        std::string problem;
        EXPECT_TRUE(list_pictures(list, {dir_ / name}, problem));
        window_ = std::make_unique<viewer_window_t>(std::move(list));
        window_->set_default_size(600, 500);
        window_->show();
        return *window_;
    }
    picture_view_t& view() { return *find_all<picture_view_t>(*window_).at(0); }
    void wait_for_title(const std::string& title) {
        wait_until([&] { return window_->get_title() == title; });
        EXPECT_EQ(title, window_->get_title().raw());
    }

    temp_dir_t dir_;
    std::unique_ptr<viewer_window_t> window_;
};

TEST_F(ViewerWindow, MovesOnWhateverThereIs) {
    viewer_window_t& window = open("c <i>.jpg");
    wait_for_title("c <i>.jpg - 3 / 4 - 48 × 64 - 100 %");
    wait_until([&] { return view().ready_count() == 2; });  // with one neighbour; the other is broken
    press_key(window, GDK_KEY_i);
    EXPECT_THAT(find_all<Gtk::Label>(window).at(0)->get_text().raw(), HasSubstr("c <i>.jpg\n48 × 64, "));
    press_key(window, GDK_KEY_Left);
    wait_until([&] { return shows_text(window, "b.jpg\nThis is not a JPEG photograph, or it is damaged."); });
    press_key(window, GDK_KEY_Home);
    wait_for_title("a.jpg - 1 / 4 - 3000 × 2000 - 20 %");
    EXPECT_THAT(find_all<Gtk::Label>(window).at(0)->get_text().raw(), HasSubstr("\nMaker, Model 1"));
    press_key(window, GDK_KEY_Page_Up);
    std::filesystem::remove(dir_ / "d.jpg");
    press_key(window, GDK_KEY_End);
    wait_until([&] { return shows_text(window, "d.jpg\nNo such file or directory"); });
    press_key(window, GDK_KEY_space);
    press_key(window, GDK_KEY_BackSpace);
    wait_for_title("c <i>.jpg - 3 / 4 - 48 × 64 - 100 %");
}

TEST_F(ViewerWindow, DecodesWhatIsSeen) {
    viewer_window_t& window = open("a.jpg");
    wait_for_title("a.jpg - 1 / 4 - 3000 × 2000 - 20 %");
    wait_until([&] { return view().shown_pixels_width() == 600; });
    press_key(window, GDK_KEY_plus);
    wait_for_title("a.jpg - 1 / 4 - 3000 × 2000 - 25 %");
    wait_until([&] { return view().shown_pixels_width() == 750; });
    press_key(window, GDK_KEY_1);
    wait_until([&] { return view().shown_pixels_width() == 3000; });
    press_key(window, GDK_KEY_0);
    EXPECT_EQ(600, view().shown_pixels_width());
    press_key(window, GDK_KEY_R);
    wait_for_title("a.jpg - 1 / 4 - 2000 × 3000 - 17 %");
    wait_until([&] { return view().shown_pixels_width() == 500; });  // the long side, which now stands
    window.resize(300, 500);
    wait_until([&] { return view().shown_pixels_width() == 450; });
    press_key(window, GDK_KEY_l);
    wait_for_title("a.jpg - 1 / 4 - 3000 × 2000 - 10 %");
    press_key(window, GDK_KEY_Down);
    press_key(window, GDK_KEY_Down);
    wait_for_title("c <i>.jpg - 3 / 4 - 48 × 64 - 100 %");
    EXPECT_GE(2U, view().ready_count()) << "what was left is not kept";
}

TEST_F(ViewerWindow, ShowsAlbumsPhotographsInTheSizeThatSuits) {
    const blob_t full = make_jpeg({.width = 2400, .height = 1600});
    for (const char* size : {"original", "thumb", "size0", "size1"}) {
        std::filesystem::create_directory(dir_ / size);
    }
    write_file(dir_ / "original/small.jpg", make_jpeg({}));
    write_file(dir_ / "thumb/big.jpg", make_jpeg({.width = 150, .height = 100}));
    write_file(dir_ / "size0/big.jpg", blob_t(full.begin(), full.begin() + static_cast<long>(full.size() / 2)));
    write_file(dir_ / "size1/big.jpg", make_jpeg({.width = 1200, .height = 800}));
    viewer_window_t& window = open("size1");
    const auto info = [&] { return find_all<Gtk::Label>(window).at(0)->get_text().raw(); };
    const std::string damaged = "\nPart of this photograph is damaged.";
    press_key(window, GDK_KEY_i);
    wait_for_title("big.jpg - 1 / 2 - 2400 × 1600 - 25 %");
    wait_until([&] { return view().shown_pixels_width() == 600; });
    EXPECT_THAT(info(), Not(HasSubstr(damaged))) << "of the size that is shown";
    press_key(window, GDK_KEY_1);
    wait_until([&] { return view().shown_pixels_width() == 2400; });
    EXPECT_THAT(info(), HasSubstr(damaged));
    press_key(window, GDK_KEY_End);
    wait_for_title("small.jpg - 2 / 2 - 64 × 48 - 100 %");
    EXPECT_THAT(info(), Not(HasSubstr(damaged)));
}

TEST_F(ViewerWindow, OpensWhatIsDroppedAndGoesRound) {
    std::filesystem::create_directory(dir_ / "empty");
    viewer_window_t& window = open("empty");
    EXPECT_EQ("Viewer", window.get_title());
    for (const auto key : {GDK_KEY_Right, GDK_KEY_End, GDK_KEY_plus, GDK_KEY_r, GDK_KEY_i}) {
        press_key(window, static_cast<guint>(key));
    }
    window.start_slide_show(0.2);
    EXPECT_TRUE(shows_text(window, "There are no photographs here. Drop some, or a folder of them, onto this window."));
    EXPECT_NE("", stderr_of([&] { window.open_dropped({"mailto:nobody", Glib::filename_to_uri(dir_ / "gone")}); }));
    EXPECT_EQ(0U, view().count());
    window.open_dropped({Glib::filename_to_uri(dir_ / "c <i>.jpg")});
    EXPECT_EQ(2U, view().index());
    window.open_dropped({Glib::filename_to_uri(dir_ / "d.jpg"), Glib::filename_to_uri(dir_.path())});
    EXPECT_EQ(5U, view().count());
    wait_for_title("d.jpg - 5 / 5 - 40 × 30 - 100 % - Slide Show");
    wait_for_title("d.jpg - 1 / 5 - 40 × 30 - 100 % - Slide Show");
    press_key(window, GDK_KEY_s);
    EXPECT_EQ("d.jpg - 1 / 5 - 40 × 30 - 100 %", window.get_title());
}

}  // namespace
