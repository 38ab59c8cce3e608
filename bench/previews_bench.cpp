#include <benchmark/benchmark.h>
#include <gtkmm/main.h>

#include "album/album_layout.h"
#include "bench/scratch_directory.h"
#include "widgets/thumbnails.h"

// Previews for the dialogs: of the camera's thumbnail, and of the whole picture where there is none.
namespace {

void preview(benchmark::State& state, bool with_thumbnail) {
    Gtk::Main::init_gtkmm_internals();  // needs no display
    const bench::scratch_directory_t directory;
    const std::string path = taloram::entry_path(directory.path(), "p.jpg");
    test_support::write_file(path, test_support::make_camera_jpeg({.width = 3000, .height = 2000}, 6, with_thumbnail));
    for ([[maybe_unused]] const auto& turn : state) {
        libgr::image2d_t image;
        if (!taloram::load_thumbnail(image, path) || !taloram::convert_to_pixbuf(image)) {
            state.SkipWithError("failed");
            break;
        }
    }
}
BENCHMARK_CAPTURE(preview, of_thumbnail, true);
BENCHMARK_CAPTURE(preview, of_picture, false);

}  // namespace
