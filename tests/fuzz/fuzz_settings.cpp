#include <tuple>

#include "settings/settings.h"
#include "settings/settings_file.h"
#include "talolib/message.h"
#include "talolib/option.h"
#include "tests/fuzz/fuzz_target.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

using namespace taloram;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const test_support::temp_dir_t home;
    static const fuzz::silence_t silence;
    talolib::g_option[talolib::option_trace] = 1;
    const auto values = [&g = g_global] {
        return std::tuple(g.from, g.album, g.shrink_width, g.shrink_height, g.jpeg_compress, g.horizontal_items,
                          g.html_header, g.html_address);
    };
    setenv("HOME", home.path().c_str(), 1);
    setenv("LANG", "", 1);
    const test_support::blob_t bytes(data, data + size);

    test_support::write_file(home / ".taloram", bytes);
    g_global = global_t();
    fuzz::require(loadini("", "taloram"));
    saveini("", "taloram");
    fuzz::require(loadini("", "taloram"));
    const auto saved = values();
    saveini("", "taloram");
    g_global = global_t();
    fuzz::require(loadini("", "taloram") && values() == saved);

    test_support::write_file(home / "taloram.msg", bytes);
    fuzz::require(talolib::init_message((home.path() + "/").c_str(), "taloram") == home / "taloram.msg");
    for (size_t id = 0; id <= size; ++id) {
        fuzz::require(std::string(talolib::getmsg(static_cast<talolib::e_message_t>(id))).size() <= size + 32);
    }
    return 0;
}
