#include <gtest/gtest.h>

#include <filesystem>

#include "dialogs/global_option_dialog.h"
#include "settings/looks.h"
#include "settings/settings.h"
#include "settings/settings_file.h"
#include "tests/dialogs/toolkit_driver.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

namespace {

using namespace taloram;
using namespace test_support;

TEST(OptionDialog, StoresAndSavesOnOkOnly) {
    const temp_dir_t dir;
    const char* const name = "option-test";
    const std::string unshowable = dir / "card\xB1\xB2";
    g_global = global_t();
    g_global.from = unshowable;
    saveini("", name);
    const blob_t before = read_file(inifile("", name));
    Gtk::Window parent;
    GlobalOptionDialog dialog(parent, "", name);
    dialog.show();
    settle();
    EXPECT_LE(dialog.get_width(), 1280);
    const auto entries = find_all<Gtk::Entry>(dialog);  // from, album, width, height, quality, items, header, address
    ASSERT_EQ(entries.size(), 8U);

    click(dialog, "OK");
    EXPECT_EQ(read_file(inifile("", name)), before) << "unchanged values";
    const std::string texts[] = {"", dir / "an album; of mine", "1000", "40000", "7", "0", "<h\u00e9>", ""};
    for (size_t i = 1; i < 8; ++i) {
        entries[i]->set_text(texts[i]);
    }
    click(dialog, "Cancel");
    EXPECT_EQ(g_global.html_address, global_t().html_address);
    EXPECT_EQ(read_file(inifile("", name)), before);

    click(dialog, "OK");
    EXPECT_TRUE(std::filesystem::is_directory(texts[1]));
    g_global = global_t();
    ASSERT_TRUE(loadini("", name));
    EXPECT_EQ(g_global.from, unshowable);
    EXPECT_EQ(g_global.album, texts[1]);
    EXPECT_EQ(g_global.shrink_width, 1000U);
    EXPECT_EQ(g_global.shrink_height, 32768U);
    EXPECT_EQ(g_global.jpeg_compress, 7U);
    EXPECT_EQ(g_global.horizontal_items, 0U);
    EXPECT_EQ(g_global.html_header, texts[6]);
    EXPECT_EQ(g_global.html_address, "");
    g_global = global_t();
}

TEST(OptionDialog, FillsInALook) {
    g_global = global_t();
    const char* const name = "option-test-looks";
    Gtk::Window parent;
    GlobalOptionDialog without(parent, "/none/", name);
    without.show();
    EXPECT_FALSE(find_button(without, "Looks...")->get_sensitive());
    without.hide();
    GlobalOptionDialog dialog(parent, TALORAM_PROGRAMS "/", name);
    dialog.show();
    auto* button = dynamic_cast<Gtk::MenuButton*>(find_button(dialog, "Looks..."));
    ASSERT_NE(button, nullptr);
    const std::vector<Gtk::Widget*> items = button->get_popup()->get_children();
    ASSERT_EQ(items.size(), 3U);
    EXPECT_EQ(dynamic_cast<Gtk::MenuItem&>(*items.back()).get_label(),
              "plain: Readable on every screen, light or dark as the reader prefers");
    items[1]->activate();
    click(dialog, "Cancel");
    EXPECT_EQ(g_global.html_header, global_t().html_header);
    click(dialog, "OK");
    g_global = global_t();
    ASSERT_TRUE(loadini("", name));
    EXPECT_EQ(g_global.html_header, installed_looks(TALORAM_PROGRAMS "/")[1].line) << "as long as it is";
    g_global = global_t();
}

}  // namespace
