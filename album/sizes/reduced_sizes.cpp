#include "album/sizes/reduced_sizes.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <tuple>

#include "album/engine_step.h"
#include "album/jobs.h"
#include "album/sizes/jpeg_files.h"
#include "album/sizes/level_files.h"
#include "album/sizes/unflushed_sizes.h"
#include "libgr/image/pixel_operations.h"
#include "libgr/jpeg/jpegdata.h"
#include "libutils/diagnostics.h"
#include "libutils/files/directory.h"
#include "settings/settings.h"
#include "shooting_data/photo_header.h"
#include "talolib/option.h"

namespace taloram {

namespace {

// A photograph's original, opened once for all sizes. It stays where it is: messages name the file by `path`.
struct original_t {
    std::string path;
    libgr::jpegdata_t file;
    photo_header_t header;
};

// False, after a report, when `dirs` can't hold the levels and the thumbnail.
bool has_directories(const std::vector<std::string>& dirs, unsigned long level, const std::string& name) {
    const bool enough = dirs.size() >= 2 && level <= dirs.size() - 2;
    if (!enough) {
        libutils::report(name, ": savejpeg failed.");
    }
    return enough;
}

// Lines about a failure begin with `subject`.
bool read_original(original_t& original, const std::string& album, const std::string& name,
                   const std::string& subject) {
    original.path = original_path(album, name);
    if (!load_jpeg_file(original.file, original.path, subject)) {
        return false;
    }
    const bool read = read_photo_header(original.header, original.file);
    if (!read) {
        libutils::report(subject, ": analyze_markers() failed.");
    }
    return read;
}

// Level 0 is a byte copy, or turned without loss: in either case it keeps the camera's quality.
bool write_level0(const original_t& original, const std::string& level0, const std::string& name, bool turned,
                  unsigned long count) {
    libgr::jpegdata_t file = original.file;
    const bool written =
        (!turned || turn_jpeg(file, original.file, original.path, count)) && save_jpeg_file(file, level0);
    if (!written) {
        libutils::report(name, turned ? ": rotatejpeg() failed." : ": copyjpeg() failed.");
    }
    return written;
}

bool write_camera_thumbnail(const std::string& path, const libutils::bytes_t& thumbnail, unsigned long count) {
    libgr::jpegdata_t data;
    data.setvector(thumbnail, path.c_str());
    // It is turned before it is written: an unturned one would pass for done. One that can't be turned is still one.
    libgr::jpegdata_t turned;
    if (count != 0 && turn_jpeg(turned, data, path, count)) {
        data.setvector(turned, path.c_str());
    }
    const std::error_code failure = save_file(data, path);
    if (failure) {
        libutils::report(path, ": thumbnail save failed, ", failure.message());
    }
    return !failure;
}

// Without a thumbnail of the camera's it is one more picture on the way down.
void plan_thumbnail(level_plan_t& plan, size_t halvings, const std::string& path) {
    talolib::trace(std::cout, path, ": is scale down thumbnail.");
    plan.rows.push_back({halvings, path, false});
}

bool ends_the_run(const files_t& /*file*/) {
    return false;
}

// The directories of a photograph, the numbered ones made where they are missing.
std::vector<std::string> make_level_directories(const std::string& album, unsigned long level) {
    std::vector<std::string> dirs = level_directories(album, level);
    std::for_each(dirs.begin(), dirs.end() - 1, [](const std::string& dir) { libutils::mkdir(dir.c_str()); });
    return dirs;
}

// Where the sizes of a photograph go.
struct places_t {
    unsigned long level = 0;  // the top one
    std::vector<std::string> dirs;
};

// The places of anything that may stand in an import list, made where they are missing. What is no photograph has those
// of a small one, and so, after a report, has one that can't be read; `original` is empty then.
places_t make_places(original_t& original, const std::string& album, const std::string& name) {
    places_t places;
    if (is_photo(name) && read_original(original, album, name, original_path(album, name))) {
        places.level = top_level(original.header.width, original.header.height);
    } else {
        original.file.clear();
    }
    places.dirs = make_level_directories(album, places.level);
    return places;
}

// One that could not be read is tried and told of once more, as the work on a single photograph does.
bool is_open(original_t& original, const std::string& album, const std::string& name) {
    return !original.file.empty() || read_original(original, album, name, name);
}

// shrinkone() of an original that has been opened.
bool make_sizes(original_t& original, const places_t& places, const std::string& name, uint64_t rightrotatecount) {
    const unsigned long level = places.level;
    const std::vector<std::string>& dirs = places.dirs;
    read_exif(original.header);
    const auto& orientation = original.header.orientation_value;
    const libutils::bytes_t& thumbnail = original.header.thumbnail;
    const bool turned = rightrotatecount != 0;
    unsigned long count = rightrotatecount;
    if (orientation) {
        talolib::trace(std::cerr, "orientation: ", *orientation);
        count = libgr::mixorientandrightrotatecount(rightrotatecount, *orientation);
        talolib::trace(std::cerr, "rightrotatecount: ", count);
    }

    // A photograph that the user left alone stays as shot, whatever its orientation says: browsers turn it by the
    // segments that every level then keeps. The camera's thumbnail has none and is turned in any case.
    const std::string level0 = entry_path(dirs[0], name);
    const std::string thumb = entry_path(dirs[level + 1], name);
    if (!write_level0(original, level0, name, turned, count)) {
        return false;
    }
    original.file.clear();
    level_plan_t plan{level0, name, level0 + ": load() failed.", level0 + ": decompress() failed.", "", {}};
    size_t halvings = 1;
    for (unsigned long k = 1; k <= level; ++k) {
        // No halving for a level that is skipped, on purpose. An import removed the sizes of an old original before, so
        // that it skips none.
        const std::string path = entry_path(dirs[k], name);
        if (need_update(original.path, path)) {
            plan.rows.push_back({halvings++, path, !turned});
        }
    }
    const bool has_thumbnail = !need_update(original.path, thumb);
    if (!has_thumbnail && thumbnail.empty()) {
        plan_thumbnail(plan, halvings + 1, thumb);
    }
    return write_levels(plan) &&
           (has_thumbnail || thumbnail.empty() || write_camera_thumbnail(thumb, thumbnail, count));
}

// shrinkoneupdate() of an original that has been opened.
bool update_sizes(original_t& original, const places_t& places, const std::string& name, unsigned long startlevel,
                  uint64_t rightrotatecount) {
    const unsigned long level = places.level;
    const std::vector<std::string>& dirs = places.dirs;
    read_exif(original.header);
    const auto& orientation = original.header.orientation_value;
    const libutils::bytes_t& thumbnail = original.header.thumbnail;
    // The user's count only says that the photograph is to be done again: where the camera knew the orientation, that
    // alone decides how far it is turned.
    const bool turned = rightrotatecount != 0;
    const unsigned long count = orientation ? libgr::mixorientandrightrotatecount(0, *orientation) : rightrotatecount;
    talolib::trace(std::cerr, "rightrotatecount: ", count);

    const std::string level0 = entry_path(dirs[0], name);
    const auto outdated = [&](const std::string& dir) { return need_update(original.path, entry_path(dir, name)); };
    if ((turned || outdated(dirs[0])) && !write_level0(original, level0, name, turned, count)) {
        return false;
    }
    original.file.clear();
    const auto last = dirs.begin() + static_cast<std::ptrdiff_t>(level + 2);
    if (!turned && std::none_of(dirs.begin(), last, outdated)) {
        return true;
    }

    // From level 0 on a turned photograph is written at the settings' quality, level 0 included. Of any other level 0
    // is the copy from above and stays one, even when the original comes from a camera whose clock is ahead.
    const auto is_saved = [&](unsigned long k) { return turned || (k != 0 && outdated(dirs[k])); };
    // The thumbnail is made last and anew. Were this stopped on the way, an old one would pass for the end of the work.
    const std::string thumb = entry_path(dirs[level + 1], name);
    level_plan_t plan{level0, name, name + ": jpegdata load() failed.", name + ": decompress() failed.", thumb, {}};
    for (unsigned long k = startlevel; k <= level; ++k) {
        plan.rows.push_back({k, entry_path(dirs[k], name), true, is_saved(k)});
    }
    if (thumbnail.empty()) {
        plan_thumbnail(plan, std::max(startlevel, level + 1) + 1, thumb);
    }
    return write_levels(plan) && (thumbnail.empty() || write_camera_thumbnail(thumb, thumbnail, count));
}

// Anything that may stand in an import list.
bool shrink_file(const std::string& album, const files_t& file) {
    const std::string& name = file.filename;
    original_t original;
    const places_t places = make_places(original, album, name);
    if (!is_photo(name)) {
        return true;
    }
    note_unflushed_sizes(album);
    return is_open(original, album, name) && make_sizes(original, places, name, file.rightrotatecount);
}

bool shrink_file_update(const std::string& album, const files_t& file) {
    const std::string& name = file.filename;
    original_t original;
    const places_t places = make_places(original, album, name);
    if (!is_photo(name)) {
        return true;
    }
    unsigned long start = 0;
    if (file.rightrotatecount == 0) {
        const auto missing = std::find_if(places.dirs.begin(), places.dirs.end(),
                                          [&](const std::string& dir) { return !is_exist(entry_path(dir, name)); });
        if (missing == places.dirs.end()) {
            return true;
        }
        start = static_cast<unsigned long>(missing - places.dirs.begin());
    }
    note_unflushed_sizes(album);
    return is_open(original, album, name) && update_sizes(original, places, name, start, file.rightrotatecount);
}

// Does `work` for every file, several at a time where the program allows it.
bool for_each_file(const std::string& album, const std::vector<files_t>& files, progress_t& progress,
                   bool (*work)(const std::string&, const files_t&), const failed_file_t& failed,
                   const libutils::goes_on_t& asked) {
    bool good = true;
    libutils::workers_t workers = g_workers;
    workers.goes_on = [&] {
        good = good && libutils::goes_on(asked);
        return good;
    };
    const auto finished = [&](size_t i, libutils::task_end_t end) {
        if (end == libutils::task_end_t::died) {
            libutils::report(files[i].filename, ": the process that worked on it has died.");
        }
        good = end == libutils::task_end_t::succeeded || failed(files[i]);
        if (good) {
            emit_progress(progress, i, files.size());
        }
        return good;
    };
    libutils::run_tasks(
        files.size(), workers, [&](size_t i) { return work(album, files[i]); }, finished);
    return good;
}

}  // namespace

unsigned long getshrinklevel(const std::string& album, const std::string& name) {
    const std::string path = original_path(album, name);
    libgr::jpegdata_t data;
    if (!load_jpeg_file(data, path, path)) {
        return 0;
    }
    libgr::jpeginfo_t info;
    if (!info.analyze_markers(data)) {
        libutils::report(path, ": analyze_markers() failed.");
        return 0;
    }
    return top_level(info.width, info.height);
}

unsigned long top_level(uint64_t width, uint64_t height) {
    unsigned long level = 0;
    while (width >> level > g_global.shrink_width || height >> level > g_global.shrink_height) {
        ++level;
    }
    return level;
}

bool need_update(const std::string& source, const std::string& target) {
    struct stat source_status {};
    struct stat target_status {};
    if (stat(source.c_str(), &source_status) != 0) {
        return false;
    }
    if (stat(target.c_str(), &target_status) != 0) {
        return true;
    }
    const auto time = [](const struct stat& status) { return std::tie(status.st_mtim.tv_sec, status.st_mtim.tv_nsec); };
    return time(source_status) > time(target_status);
}

bool shrink(const std::string& album, const std::vector<files_t>& files, progress_t& progress) {
    const bool made = shrink(album, files, progress, ends_the_run);
    return flush_sizes(album) && made;
}

bool shrink(const std::string& album, const std::vector<files_t>& files, progress_t& progress,
            const failed_file_t& failed, const libutils::goes_on_t& asked) {
    libutils::mkdir(entry_path(album, layout::thumb).c_str());
    return for_each_file(album, files, progress, shrink_file, failed, asked);
}

bool shrinkupdate(const std::vector<files_t>& files, const std::string& album, progress_t& progress) {
    const bool made = shrinkupdate(files, album, progress, ends_the_run);
    return flush_sizes(album) && made;
}

bool shrinkupdate(const std::vector<files_t>& files, const std::string& album, progress_t& progress,
                  const failed_file_t& failed, const libutils::goes_on_t& asked) {
    return for_each_file(album, files, progress, shrink_file_update, failed, asked);
}

bool shrinkone(const std::vector<std::string>& dirs, const std::string& album, const std::string& name,
               unsigned long level, unsigned long rightrotatecount) {
    original_t original;
    return has_directories(dirs, level, name) && read_original(original, album, name, name) &&
           make_sizes(original, {level, dirs}, name, rightrotatecount);
}

bool shrinkoneupdate(const std::vector<std::string>& dirs, const std::string& album, const std::string& name,
                     unsigned long level, unsigned long startlevel, unsigned long rightrotatecount) {
    original_t original;
    return has_directories(dirs, level, name) && read_original(original, album, name, name) &&
           update_sizes(original, {level, dirs}, name, startlevel, rightrotatecount);
}

}  // namespace taloram
