#include "viewer/picture_list.h"

#include <algorithm>
#include <list>

#include "album/album_layout.h"
#include "libutils/files/directory.h"
#include "libutils/files/path.h"
#include "libutils/files/system_path.h"

namespace talovue {

namespace {

bool is_shown(const std::string& name) {
    return !name.starts_with('.') &&
           (libutils::extcasecmp(name, ".jpg") == 0 || libutils::extcasecmp(name, ".jpeg") == 0);
}

// `directory` is "" or ends with a separator.
bool append_files(std::vector<picture_t>& pictures, const std::string& directory) {
    std::list<std::string> names;
    if (!libutils::getfiles(names, directory.c_str())) {
        return false;
    }
    for (const std::string& name : names) {
        if (is_shown(name)) {
            pictures.push_back({directory + name});
        }
    }
    return true;
}

// False, with nothing appended, when `directory` is no album or has no photographs. Where originals are kept from this
// user the thumbnails still tell them.
bool append_album(std::vector<picture_t>& pictures, const std::string& directory) {
    if (!taloram::is_album(directory)) {
        return false;
    }
    std::vector<std::string> photos;
    static_cast<void>(taloram::list_photos(photos, directory));
    for (const std::string& photo : photos) {
        pictures.push_back({taloram::original_path(directory, photo), directory});
    }
    return !photos.empty();
}

// Small photographs have no file in the higher sizes, so that a size alone is not what its album shows.
bool append_directory(std::vector<picture_t>& pictures, const std::string& argument) {
    const std::string directory = libutils::strip_trailing_slash(argument);
    if (taloram::is_level_name(libutils::directory_name(directory))) {
        const std::string parent = libutils::parent_directory(directory);
        if (append_album(pictures, parent.empty() ? "." : parent)) {
            return true;
        }
    }
    const size_t before = pictures.size();
    if (!append_files(pictures, argument.ends_with('/') ? argument : argument + "/")) {
        return false;
    }
    if (pictures.size() == before) {
        static_cast<void>(append_album(pictures, directory));
    }
    return true;
}

// A file that can't be listed with its directory is still shown by itself.
picture_list_t list_around(const std::string& file) {
    picture_list_t list;
    std::vector<picture_t>& files = list.pictures;
    static_cast<void>(append_files(files, libutils::directory_part(file)));
    const auto place = std::ranges::lower_bound(files, file, {}, &picture_t::path);
    list.first = static_cast<size_t>(place - files.begin());
    if (place == files.end() || place->path != file) {
        files.insert(place, {file});
    }
    return list;
}

}  // namespace

bool list_pictures(picture_list_t& list, const std::vector<std::string>& arguments, std::string& problem) {
    picture_list_t found;
    for (const std::string& argument : arguments) {
        if (!libutils::is_exist(argument)) {
            problem = argument + ": no such file or directory.";
            return false;
        }
        if (!libutils::is_directory(argument)) {
            if (arguments.size() == 1) {
                found = list_around(argument);
            } else {
                found.pictures.push_back({argument});
            }
        } else if (!append_directory(found.pictures, argument)) {
            problem = argument + ": can't be read.";
            return false;
        }
    }
    list = std::move(found);
    return true;
}

}  // namespace talovue
