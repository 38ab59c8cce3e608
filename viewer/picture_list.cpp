#include "viewer/picture_list.h"

#include <algorithm>
#include <list>

#include "libutils/directory.h"
#include "libutils/path.h"
#include "libutils/system_path.h"

namespace talovue {

namespace {

bool is_shown(const std::string& name) {
    return !name.starts_with('.') &&
           (libutils::extcasecmp(name, ".jpg") == 0 || libutils::extcasecmp(name, ".jpeg") == 0);
}

// `directory` is "" or ends with a separator.
bool append_directory(std::vector<std::string>& paths, const std::string& directory) {
    std::list<std::string> names;
    if (!libutils::getfiles(names, directory.c_str())) {
        return false;
    }
    for (const std::string& name : names) {
        if (is_shown(name)) {
            paths.push_back(directory + name);
        }
    }
    return true;
}

// A file that can't be listed with its directory is still shown by itself.
picture_list_t list_around(const std::string& file) {
    picture_list_t list;
    static_cast<void>(append_directory(list.paths, libutils::directory_part(file)));
    const auto place = std::lower_bound(list.paths.begin(), list.paths.end(), file);
    list.first = static_cast<size_t>(place - list.paths.begin());
    if (place == list.paths.end() || *place != file) {
        list.paths.insert(place, file);
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
                found.paths.push_back(argument);
            }
        } else if (!append_directory(found.paths, argument.ends_with('/') ? argument : argument + "/")) {
            problem = argument + ": can't be read.";
            return false;
        }
    }
    list = std::move(found);
    return true;
}

}  // namespace talovue
