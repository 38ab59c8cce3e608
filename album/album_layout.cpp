#include "album/album_layout.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <initializer_list>
#include <iterator>
#include <list>
#include <set>
#include <string_view>

#include "libutils/files/directory.h"
#include "libutils/files/path.h"

namespace taloram {

namespace {

constexpr const char* photo_extension = ".jpg";
constexpr const char* movie_extensions[] = {".mov", ".mpg", ".mp4"};

unlisted_t list_kind(std::vector<std::string>& found, const std::string& album,
                     std::initializer_list<const char*> directories, bool (*is_wanted)(const std::string&)) {
    std::set<std::string> sorted;
    unlisted_t unlisted;
    for (const char* directory : directories) {
        std::list<std::string> names;
        const std::string path = entry_path(album, directory);
        const std::error_code failure = libutils::list_files(names, path);
        if (failure && !unlisted && !libutils::is_absent(failure)) {
            unlisted = {path, failure};
        }
        std::copy_if(names.begin(), names.end(), std::inserter(sorted, sorted.end()), is_wanted);
    }
    found.assign(sorted.begin(), sorted.end());
    return unlisted;
}

}  // namespace

bool is_exist(const std::string& path) {
    return libutils::is_exist(path);
}

bool is_album(const std::string& directory) {
    return is_exist(entry_path(directory, layout::original));
}

bool is_closed(const std::string& directory) {
    return faccessat(AT_FDCWD, directory.c_str(), R_OK | X_OK, AT_EACCESS) != 0 && errno == EACCES &&
           !is_exist(entry_path(directory, layout::text));
}

bool is_import_interrupted(const std::string& directory) {
    std::list<std::string> originals;
    return !is_exist(entry_path(directory, layout::thumb)) &&
           !libutils::list_files(originals, entry_path(directory, layout::original)) &&
           std::any_of(originals.begin(), originals.end(), is_photo);
}

bool is_book(const std::string& directory) {
    std::list<std::string> below;
    if (is_album(directory) || !libutils::getdirs(below, directory.c_str())) {
        return false;
    }
    return is_exist(entry_path(directory, layout::index_page)) ||
           std::any_of(below.begin(), below.end(),
                       [&](const std::string& name) { return is_album(entry_path(directory, name)); });
}

bool is_photo(const std::string& filename) {
    return libutils::extcasecmp(filename, photo_extension) == 0;
}

bool is_movie(const std::string& filename) {
    return std::any_of(std::begin(movie_extensions), std::end(movie_extensions),
                       [&](const char* extension) { return libutils::extcasecmp(filename, extension) == 0; });
}

bool is_plain_name(const std::string& filename) {
    constexpr std::string_view ends_a_name("/\0", 2);
    return !filename.empty() && filename != "." && filename != ".." &&
           filename.find_first_of(ends_a_name) == std::string::npos;
}

unlisted_t list_photos(std::vector<std::string>& photos, const std::string& album) {
    return list_kind(photos, album, {layout::thumb, layout::original}, is_photo);
}

unlisted_t list_movies(std::vector<std::string>& movies, const std::string& album) {
    return list_kind(movies, album, {layout::movie}, is_movie);
}

std::string entry_path(const std::string& directory, const std::string& name) {
    return directory.empty() ? name : directory + "/" + name;
}

std::string original_path(const std::string& album, const std::string& name) {
    return entry_path(entry_path(album, layout::original), name);
}

std::string thumb_path(const std::string& album, const std::string& name) {
    return entry_path(entry_path(album, layout::thumb), name);
}

std::string text_path(const std::string& album, const std::string& name) {
    return entry_path(entry_path(album, layout::text), name);
}

const char* directory_of_kind(const std::string& filename) {
    if (is_photo(filename)) {
        return layout::original;
    }
    return is_movie(filename) ? layout::movie : layout::text;
}

std::string zoom_page_name(const std::string& photo, unsigned long level) {
    return libutils::basename(photo) + "_" + std::to_string(level) + ".html";
}

std::string level_name(unsigned long level) {
    return "size" + std::to_string(level);
}

bool is_level_name(const std::string& name) {
    for (unsigned long level = 0; level <= highest_top_level; ++level) {
        if (name == level_name(level)) {
            return true;
        }
    }
    return false;
}

std::vector<std::string> level_directories(const std::string& album, unsigned long top) {
    std::vector<std::string> directories;
    for (unsigned long level = 0; level <= top; ++level) {
        directories.push_back(entry_path(album, level_name(level)));
    }
    directories.push_back(entry_path(album, layout::thumb));
    return directories;
}

}  // namespace taloram
