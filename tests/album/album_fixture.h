#pragma once

#include <gtest/gtest.h>

#include <filesystem>

#include "album/album_layout.h"
#include "settings/settings.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

namespace fs = std::filesystem;
using namespace taloram;
using namespace test_support;

// What the tests of the engine share: an album and a card in a fresh directory, and small reduced sizes.
struct album_test_t : testing::Test {
    album_test_t() {
        fs::create_directories(album + "/original");
        fs::create_directories(album + "/txt");
        g_global.shrink_width = 64;
        g_global.shrink_height = 48;
        g_global.html_header = "<meta>";
        g_global.html_address = "me";
        progress.connect([this](double done) { steps.push_back(done); });
    }
    ~album_test_t() override { g_global = global_t(); }

    // "true" or "false" for the result of `action`, then what it writes to standard error.
    static std::string outcome(const std::function<bool()>& action) {
        bool result = false;
        const std::string text = stderr_of([&] { result = action(); });
        return (result ? "true\n" : "false\n") + text;
    }
    template <typename Contents>
    static void put(const fs::path& path, const Contents& contents) {
        fs::create_directories(path.parent_path());
        write_file(path, contents);
    }
    static std::string text_of(const std::string& path) {
        const blob_t bytes = read_file(path);
        return {bytes.begin(), bytes.end()};
    }

    const temp_dir_t dir;
    const std::string album = dir / "album", card = dir / "card";
    progress_t progress, silent;
    std::vector<double> steps;  // of `progress`
};
