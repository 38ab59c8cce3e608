#include "album/turn/turn_photo.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <optional>

#include "album/engine_step.h"
#include "album/flush_album.h"
#include "album/jobs.h"
#include "album/pages/album_pages.h"
#include "album/sizes/jpeg_files.h"
#include "album/sizes/level_files.h"
#include "album/sizes/photo_sizes.h"
#include "album/sizes/reduced_sizes.h"
#include "album/turn/pending_turn.h"
#include "album/write_lock.h"
#include "libgr/jpeg/whole_picture.h"
#include "libutils/diagnostics.h"
#include "shooting_data/photo_header.h"

namespace taloram {

namespace {

bool refuse(const std::string& path, const char* reason) {
    libutils::report(path, reason, ", nothing was turned.");
    return false;
}

// Makes the turned files of one photograph.
class photo_turner_t {
  public:
    photo_turner_t(const pending_turn_t& pending, const std::string& album, const std::string& name,
                   unsigned long count)
        : pending_(pending), album_(album), name_(name), count_(count) {}

    [[nodiscard]] bool run();

  private:
    [[nodiscard]] bool turn_size(unsigned long level);
    [[nodiscard]] bool turn_thumbnail(unsigned long top, bool is_cameras);
    [[nodiscard]] bool make_thumbnail(unsigned long top);
    [[nodiscard]] bool write_turned(libgr::jpegdata_t& data, const std::string& path, const std::string& kind,
                                    unsigned long count);

    const pending_turn_t& pending_;
    const std::string& album_;
    const std::string& name_;
    unsigned long count_;
    unsigned long carried_ = 0;  // turn that level 0 asks for by its segments
};

bool photo_turner_t::run() {
    const std::string path = original_path(album_, name_);
    photo_header_t original;
    if (!load_photo_header(original, path)) {
        return refuse(path, ": can't be read");
    }
    read_exif(original);
    const unsigned long top = top_level(original.width, original.height);
    for (unsigned long level = 0; level <= highest_top_level; ++level) {
        // Larger settings than today's may have left more sizes.
        const bool has_size = level <= top || is_exist(entry_path(entry_path(album_, level_name(level)), name_));
        if (has_size && !turn_size(level)) {
            return false;
        }
    }
    return turn_thumbnail(top, !original.thumbnail.empty());
}

// A turned file has no segments, so the turn that they ask for must become part of its pixels.
bool photo_turner_t::turn_size(unsigned long level) {
    const std::string path = entry_path(entry_path(album_, level_name(level)), name_);
    libgr::jpegdata_t data;
    const std::optional<photo_size_t> size = data.load(path.c_str()) ? read_photo_size(path, data) : std::nullopt;
    if (!size || is_mirrored(size->orientation)) {
        return refuse(path, size ? ": is mirrored" : ": can't be read");
    }
    const unsigned long carried = quarter_turns(size->orientation);
    carried_ = level == 0 ? carried : carried_;
    return write_turned(data, path, level_name(level), (count_ + carried) % 4) || refuse(path, ": can't be turned");
}

// The camera's thumbnail was set upright when it came into the album; one that was made from the picture lies as that.
bool photo_turner_t::turn_thumbnail(unsigned long top, bool is_cameras) {
    const std::string path = thumb_path(album_, name_);
    libgr::jpegdata_t data;
    const bool is_whole = data.load(path.c_str()) && libgr::is_whole_picture(data);
    const unsigned long count = (count_ + (is_cameras ? 0 : carried_)) % 4;
    return (is_whole && write_turned(data, path, layout::thumb, count)) || make_thumbnail(top) ||
           refuse(path, ": can't be turned");
}

bool photo_turner_t::make_thumbnail(unsigned long top) {
    const std::string level0 = pending_.path(level_name(0), name_);
    return write_levels({level0,
                         name_,
                         level0 + ": load() failed.",
                         level0 + ": decompress() failed.",
                         "",
                         {{top + 2, pending_.path(layout::thumb, name_), false}}});
}

bool photo_turner_t::write_turned(libgr::jpegdata_t& data, const std::string& path, const std::string& kind,
                                  unsigned long count) {
    libgr::jpegdata_t turned;
    const std::string made = pending_.path(kind, name_);
    if (!turn_jpeg(turned, data, path, count)) {
        return false;
    }
    const std::error_code failure = save_file(turned, made);
    if (failure) {
        libutils::report(path, ": its turned file can't be written, ", failure.message());
    }
    return !failure;
}

// Makes the turned files of all photographs.
bool turn_files(const pending_turn_t& pending, const std::string& album, const std::vector<std::string>& names,
                unsigned long count, progress_signals_t& progress, bool& stopped) {
    bool good = true;
    const auto finished = [&](size_t i, libutils::task_end_t end) {
        good = end == libutils::task_end_t::succeeded;
        if (end == libutils::task_end_t::died) {
            libutils::report(names[i], ": the process that worked on it has died.");
        }
        if (good) {
            emit_progress(progress.sizes, i, names.size());
        }
        return good;
    };
    libutils::workers_t workers = g_workers;
    workers.goes_on = lasting_goes_on(progress, stopped);
    libutils::run_tasks(
        names.size(), workers, [&](size_t i) { return photo_turner_t(pending, album, names[i], count).run(); },
        finished);
    return good && !stopped;
}

bool is_good(const std::error_code& error, const std::string& album) {
    if (error) {
        libutils::report(album, ": nothing was turned, ", error.message());
    }
    return !error;
}

// False also where there is a message about what stays to be put in place.
bool turn_all(pending_turn_t& pending, const std::string& album, const std::vector<std::string>& names,
              unsigned long count, progress_signals_t& progress, bool& stopped) {
    return is_good(pending.begin(names), album) && turn_files(pending, album, names, count, progress, stopped) &&
           is_good(pending.commit(count), album) && pending.place();
}

std::vector<files_t> as_files(const std::vector<std::string>& names, unsigned long count) {
    std::vector<files_t> files;
    std::transform(names.begin(), names.end(), std::back_inserter(files), [count](const std::string& name) {
        return files_t{name, count};
    });
    return files;
}

// Whoever asks again for what a killed program had begun wants it once.
bool is_among(const std::vector<left_turn_t>& turns, const std::string& name, unsigned long count) {
    return std::any_of(turns.begin(), turns.end(), [&](const left_turn_t& turn) {
        return turn.count == count && std::find(turn.photos.begin(), turn.photos.end(), name) != turn.photos.end();
    });
}

}  // namespace

turned_t turn_photos(const std::string& album, const std::vector<std::string>& names, unsigned long count,
                     progress_signals_t& progress) {
    write_lock_t lock;
    if (!lock_album(lock, album)) {
        return turned_t::none;
    }
    std::vector<left_turn_t> left;
    if (!place_left_turns(album, left)) {
        return turned_t::none;
    }
    std::vector<std::string> to_turn = names;
    std::erase_if(to_turn, [&](const std::string& name) { return is_among(left, name, count); });
    pending_turn_t pending(album);
    progress.begun.emit(album, as_files(to_turn, count));
    bool stopped = false;
    const bool turned = to_turn.empty() || turn_all(pending, album, to_turn, count, progress, stopped);
    // The pages name the sizes' bytes. Until they are written the turn counts as begun: it would else be asked for
    // again.
    const bool changed = pending.is_committed() || !left.empty();
    const bool written = !changed || (write_pages(album, progress) && flush_album(album));
    if (turned) {
        pending.end();
    }
    end_left_turns(album, left);
    return stopped ? turned_t::stopped : !turned ? turned_t::none : written ? turned_t::all : turned_t::pages_stale;
}

bool end_begun_turns(const std::string& album) {
    progress_signals_t unseen;
    return !has_left_turns(album) || turn_photos(album, {}, 0, unseen) == turned_t::all;
}

bool rotateallsize(const std::string& album, const std::string& name, unsigned long count) {
    for (const std::string& dir : level_directories(album, getshrinklevel(album, name))) {
        const std::string path = entry_path(dir, name);
        if (!rotatejpeg(path, path, count)) {
            libutils::report(path, ": rotate jpeg failed.");
            return false;
        }
    }
    return true;
}

}  // namespace taloram
