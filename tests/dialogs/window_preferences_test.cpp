#include "toolkit/window_preferences.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "tests/dialogs/toolkit_driver.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

namespace {

using namespace taloram;
using namespace test_support;

TEST(WindowPreferences, are_kept_and_shared) {
    const temp_dir_t dir;
    const std::string path = dir / "not there yet/taloram/window.conf";
    window_preferences_t first(path), second(path);
    EXPECT_FALSE(first.flag("maker", "verify"));
    EXPECT_EQ(0.5, first.number("viewer", "zoom", 0.5));
    first.set_flag("maker", "verify", true);
    {
        const grouping_locale_t locale;
        second.set_number("viewer", "zoom", 1234.5);
    }
    const window_preferences_t later(path);
    EXPECT_TRUE(later.flag("maker", "verify")) << "another program's choice stays";
    EXPECT_EQ(1234.5, later.number("viewer", "zoom", 0));
    EXPECT_FALSE(later.flag("viewer", "verify"));
    EXPECT_EQ((std::vector{path}), files_below(dir.path()));
}

TEST(WindowPreferences, a_broken_file_is_passed_over) {
    const temp_dir_t dir;
    const std::string path = dir / "window.conf";
    for (const std::string& text :
         {std::string("verify=true\n"), std::string("[a]\n\xFF\xFE=\n"), std::string(9, '\0')}) {
        write_file(path, text);
        EXPECT_TRUE(stderr_of([&] {
                        window_preferences_t preferences(path);
                        EXPECT_FALSE(preferences.flag("a", "verify"));
                        preferences.set_flag("a", "verify", true);
                    }).starts_with(path + ": can't be used, "));
        EXPECT_EQ("", stderr_of([&] { EXPECT_TRUE(window_preferences_t(path).flag("a", "verify")); }));
    }
    write_file(path, std::string("[a]\nverify=perhaps\nzoom=nan\n"));
    EXPECT_EQ(path + ": can't be used: a verify\n", stderr_of([&] {
                  const window_preferences_t preferences(path);
                  EXPECT_FALSE(preferences.flag("a", "verify"));
                  EXPECT_EQ(1, preferences.number("a", "zoom", 1));
              }));
    // Where nothing can be written the choice counts for the process alone.
    const std::string below_file = path + "/window.conf";
    static_cast<void>(stderr_of([&] {
        for (const std::string& nowhere : {below_file, std::string()}) {
            window_preferences_t preferences(nowhere);
            preferences.set_flag("a", "verify", true);
            EXPECT_TRUE(preferences.flag("a", "verify"));
        }
    }));
}

TEST(WindowPreferences, buttons_and_windows_are_as_they_were_left) {
    const auto open_window = [](int width, int height) {
        Gtk::Window window;
        keep_size(window, "a window");
        window.show();
        settle();
        std::pair<int, int> size;
        window.get_size(size.first, size.second);
        if (width > 0) {
            window.resize(width, height);
            settle();
        }
        return size;
    };
    const auto own = open_window(700, 500);
    EXPECT_EQ(std::pair(700, 500), open_window(0, 0));
    EXPECT_NE(own, open_window(3000, 300));
    EXPECT_EQ(std::pair(1280, 300), open_window(0, 0)) << "within the work area";
    Gtk::CheckButton first, second;
    keep_choice(first, "a window", "choice");
    EXPECT_FALSE(first.get_active());
    first.set_active(true);
    keep_choice(second, "a window", "choice");
    EXPECT_TRUE(second.get_active());
    EXPECT_TRUE(std::filesystem::exists(std::string(getenv("HOME")) + "/.config/taloram/window.conf"));
}

}  // namespace
