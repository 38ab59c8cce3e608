#include <benchmark/benchmark.h>

#include <filesystem>
#include <optional>
#include <sstream>

#include "album/pages/album_pages.h"
#include "album/sizes/reduced_sizes.h"
#include "bench/scratch_directory.h"
#include "libutils/diagnostics.h"
#include "shooting_data/exif_summary.h"

// What is written about photographs. Rates are photographs a second.
namespace {

using namespace taloram;

constexpr int64_t photographs = 100;

// An album with pictures of the least size; the directory goes with the object.
class album_t {
  public:
    album_t() {
        const std::string original = entry_path(directory_.path(), layout::original);
        std::filesystem::create_directories(original);
        std::filesystem::create_directories(entry_path(directory_.path(), layout::text));
        std::filesystem::create_directories(entry_path(directory_.path(), layout::html));
        const test_support::blob_t jpeg = test_support::make_camera_jpeg({.width = 64, .height = 48}, 1, true);
        std::vector<files_t> files;
        for (int64_t i = 0; i < photographs; ++i) {
            files.push_back({libutils::join_text("P", 1000 + i, ".jpg")});
            test_support::write_file(entry_path(original, files.back().filename), jpeg);
        }
        progress_t progress;
        is_made_ = shrink(directory_.path(), files, progress);
    }

    [[nodiscard]] bool is_made() const { return is_made_; }
    [[nodiscard]] const std::string& path() const { return directory_.path(); }

  private:
    bench::scratch_directory_t directory_;
    bool is_made_ = false;
};

template <typename Step>
void run(benchmark::State& state, int64_t photographs_a_step, const Step& step) {
    const album_t album;
    bool good = album.is_made();
    for ([[maybe_unused]] const auto& turn : state) {
        good = good && step(album.path());
    }
    if (!good) {
        state.SkipWithError("failed");
    }
    state.SetItemsProcessed(state.iterations() * photographs_a_step);
}

void summary(benchmark::State& state) {
    run(state, 1, [](const std::string& album) {
        std::ostringstream text;
        return write_summary(text, original_path(album, "P1000.jpg"), true);
    });
}
BENCHMARK(summary);

void page(benchmark::State& state) {
    run(state, photographs, [](const std::string& album) {
        progress_t progress;
        return makehtml(album, progress);
    });
}
BENCHMARK(page);

void zoom_pages(benchmark::State& state) {
    run(state, photographs, [](const std::string& album) {
        progress_t progress;
        return makehtmlzoom(album, progress);
    });
}
BENCHMARK(zoom_pages);

}  // namespace
