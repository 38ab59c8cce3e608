#include "album/sums/originals_check.h"

#include <numeric>

#include "album/album_walk.h"
#include "libutils/diagnostics.h"

namespace taloram {

namespace {

checked_album_t check_album(const std::string& album, progress_signals_t& progress) {
    checked_album_t checked;
    checked.path = album;
    progress.begun.emit(album, {});
    const libutils::first_report_t heard;
    checked.result = verify_album(
        album, [&checked](const flawed_file_t& file) { checked.flaws.push_back(file); }, progress);
    if (!checked.result.is_good) {
        checked.failure = heard.line();
    }
    return checked;
}

}  // namespace

size_t originals_check_t::count() const {
    return std::accumulate(albums.begin(), albums.end(), size_t{0},
                           [](size_t sum, const checked_album_t& album) { return sum + album.result.count; });
}

originals_check_t check_originals(const std::string& directory, progress_signals_t& progress) {
    originals_check_t check;
    libutils::first_report_t heard;  // of the walk alone
    bool every_album_good = true;
    const auto visit = [&](const std::string& album) {
        if (check.failure.empty()) {
            check.failure = heard.line();
        }
        if (!check.stopped) {
            check.albums.push_back(check_album(album, progress));
            check.stopped = check.albums.back().result.stopped;
            every_album_good = check.albums.back().result.is_good && every_album_good;
        }
        heard.clear();
        return true;
    };
    const walk_outcome_t walk = visit_albums(directory, {visit, [](const std::string& /*book*/) { return true; }});
    check.is_good = walk.succeeded && every_album_good;
    if (walk.succeeded) {
        check.failure.clear();
    } else if (check.failure.empty()) {
        check.failure = heard.line();
    }
    return check;
}

}  // namespace taloram
