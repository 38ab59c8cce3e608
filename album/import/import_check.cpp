#include "album/import/import_check.h"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cmath>
#include <iomanip>
#include <iterator>

#include "album/import/import_file.h"
#include "libutils/diagnostics.h"
#include "libutils/files/path.h"
#include "libutils/files/system_path.h"
#include "settings/settings.h"

namespace taloram {

namespace {

// How much of an original's length its reduced sizes take. Level 0 has all of it; the levels above have a third of the
// pixels together, and at the highest quality, which is above any camera's, mostly as many bytes as the original.
double length_of_reduced_sizes() {
    constexpr uint64_t high_quality = 95;
    return g_global.jpeg_compress < high_quality ? 1.5 : 2;
}

// Bytes are counted as floating-point numbers, which no listing overflows.
struct footprint_t {
    double length = 0;
    double on_disk = 0;  // what comes free when the file is removed
};

footprint_t footprint(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return {};
    }
    constexpr double stat_block = 512;  // bytes; stat(2), st_blocks
    const double on_disk = status.st_nlink == 1 ? stat_block * static_cast<double>(status.st_blocks) : 0;
    return {static_cast<double>(status.st_size), on_disk};
}

// What the reduced sizes are going to take beyond those that they replace. Those of an original that stays are made
// again as they are.
double room_of_sizes(const std::string& album, const std::string& name, double length, bool is_copied) {
    if (!is_photo(name) || (!is_copied && is_exist(thumb_path(album, name)))) {
        return 0;
    }
    double room = length_of_reduced_sizes() * length;
    for (const std::string& directory : level_directories(album, highest_top_level)) {
        room -= footprint(entry_path(directory, name)).on_disk;
    }
    return room;
}

enum class copies_t {
    all_made,      // assumed, without a look into the files
    missing_made,  // those that the album does not have yet
};

double room_of_file(const import_file_t& file, const std::string& name, const std::string& album, copies_t copies,
                    const libutils::goes_on_t& asked) {
    const double length = footprint(file.source).length;
    const bool is_copied = !file.in_place && (copies == copies_t::all_made || !has_same_copy(file, asked));
    const double copy = is_copied ? length - footprint(file.destination).on_disk : 0;
    return copy + room_of_sizes(album, name, length, is_copied);
}

double room_of_import(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
                      copies_t copies, const libutils::goes_on_t& asked) {
    double room = 0;
    for (const files_t& file : files) {
        if (!libutils::goes_on(asked)) {
            break;
        }
        room += room_of_file(locate_import(srcdir, file.filename, album), file.filename, album, copies, asked);
    }
    return room;
}

// Of the file system on which `path` is or is going to be; negative where the system does not tell.
double free_bytes(std::string path) {
    struct statvfs status {};
    while (statvfs(path.empty() ? "." : path.c_str(), &status) != 0) {
        if (path.empty() || path == "/") {
            return -1;
        }
        path = libutils::strip_trailing_slash(libutils::directory_part(path));
    }
    if (status.f_blocks == 0) {
        return -1;
    }
    return static_cast<double>(status.f_bavail) * static_cast<double>(status.f_frsize);
}

std::string readable_size(double bytes) {
    constexpr const char* units[] = {"KiB", "MiB", "GiB", "TiB"};
    constexpr double step = 1024;
    size_t unit = 0;
    double size = std::ceil(bytes / step);
    while (size >= step && unit + 1 < std::size(units)) {
        size /= step;
        ++unit;
    }
    return libutils::join_text(std::fixed, std::setprecision(unit == 0 ? 0 : 1), size, " ", units[unit]);
}

}  // namespace

std::vector<std::string> find_conflicts(const std::string& srcdir, const std::vector<files_t>& files,
                                        const std::string& album, const libutils::goes_on_t& asked) {
    std::vector<std::string> conflicts;
    for (const files_t& entry : files) {
        if (!libutils::goes_on(asked)) {
            break;
        }
        const import_file_t file = locate_import(srcdir, entry.filename, album);
        const bool is_written_by_program = file.destination == text_path(album, layout::count_text);
        // A source that can't be read replaces nothing.
        const bool is_readable = access(file.source.c_str(), R_OK) == 0;
        if (!file.in_place && !is_written_by_program && is_readable && is_exist(file.destination) &&
            !libutils::is_same_file(file.source, file.destination) && !has_same_copy(file, asked)) {
            conflicts.push_back(file.destination);
        }
    }
    return conflicts;
}

std::string missing_room(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
                         const libutils::goes_on_t& asked) {
    const double free = free_bytes(album);
    if (free < 0 || room_of_import(srcdir, files, album, copies_t::all_made, asked) <= free) {
        return "";
    }
    const double needed = room_of_import(srcdir, files, album, copies_t::missing_made, asked);
    return needed <= free ? "" : readable_size(needed - free);
}

bool has_room(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album) {
    const std::string missing = missing_room(srcdir, files, album);
    if (!missing.empty()) {
        libutils::report(album, ": ", missing, " more free space is needed for this import.");
    }
    return missing.empty();
}

}  // namespace taloram
