#include <gtest/gtest.h>

#include <filesystem>

#include "dialogs/edit_book_dialog.h"
#include "settings/settings.h"
#include "talolib/message.h"
#include "tests/dialogs/toolkit_driver.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

namespace test_support {

void use_locale(const std::string& name, const char* catalogues) {
    setenv("LC_ALL", name.c_str(), 1);
    setenv("LANG", name.c_str(), 1);
    EXPECT_NE("", talolib::init_message(catalogues, "taloram"));
    taloram::g_global = taloram::global_t();
}

TEST(JapaneseEncodings, ReachFilesAndPages) {
    const std::array<std::string, 5> encodings[] = {
        // a title (with "\" as second bytes), "枚数" of the catalogue
        {"ja_JP.eucJP", "EUC-JP", "=euc-jp\"", "\xA5\xBD\xC9\xBD \xBC\xCC\xBF\xBF", "\xCB\xE7\xBF\xF4"},
        {"ja_JP.SJIS", "SHIFT_JIS", "=shift_jis\"", "\x83\x5C\x95\x5C \x8E\xCA\x90\x5E", "\x96\x87\x90\x94"},
    };
    for (const auto& [locale, charmap, declared, encoded, count] : encodings) {
        const temp_dir_t dir;
        std::ignore = system(("localedef -c -i ja_JP -f " + charmap + " " + (dir / locale) + " 2>/dev/null").c_str());
        if (!std::filesystem::create_directory(dir / "txt") || !std::filesystem::exists(dir / locale + "/LC_CTYPE")) {
            GTEST_SKIP() << locale << " can't be made: localedef and its sources come with the package locales";
        }
        setenv("LOCPATH", dir.path().c_str(), 1);
        use_locale(locale, TALORAM_PROGRAMS "/");
        Gtk::Window window;
        taloram::EditBookDialog dialog(window, dir.path());
        find_all<Gtk::Entry>(dialog).at(0)->set_text("ソ表 写真");
        dialog.response(Gtk::RESPONSE_OK);
        const blob_t head = read_file(dir / "txt/head.txt");
        EXPECT_EQ(std::string(head.begin(), head.end()), encoded + "\r\n" + encoded + "\r\n");
        const blob_t page = read_file(dir / "index.html");
        for (const std::string& text : {declared, encoded, count}) {
            EXPECT_NE(std::string(page.begin(), page.end()).find(text), std::string::npos) << locale << ": " << text;
        }
        EXPECT_EQ(find_all<Gtk::Entry>(dialog).at(0)->get_text(), "ソ表 写真") << locale;
    }
    use_locale("C.UTF-8", TALORAM_CATALOGUES "/");
}

}  // namespace test_support
