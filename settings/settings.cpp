#include "settings/settings.h"

#include <cstdlib>

#include "libutils/text/text.h"
#include "talolib/locale_name.h"

namespace taloram {

namespace {

std::string default_album() {
    const char* home = std::getenv("HOME");
    return home == nullptr ? "album" : std::string(home) + "/" + "album";
}

}  // namespace

std::string page_charset() {
    const std::string locale = talolib::get_locale_name();
    if (locale == "ja_JP.SJIS" || locale == "ja-JP") {
        return "shift_jis";
    }
    return libutils::equals_nocase(locale, "ja_JP.eucJP") ? "euc-jp" : "UTF-8";
}

global_t::global_t()
    : from("/mnt/DCIM"),
      album(default_album()),
      html_header("<meta http-equiv=\"Content-Type\" content=\"text/html; charset=" + page_charset() + "\">"),
      html_address("(C) <a href=\"mailto:you@example.com\">your name</a>, All Rights Reserved.") {
}

global_t g_global;
stored_paths_t g_stored_paths;

}  // namespace taloram
