#include <algorithm>
#include <filesystem>
#include <list>

#include "album/publish/publish.h"
#include "album/publish/published_copy.h"
#include "libutils/files/directory.h"
#include "libutils/files/path.h"
#include "libutils/files/system_path.h"

namespace taloram {

namespace {

using std::filesystem::path;

// Without links, also where the last components are not there yet; "" when that can't be told.
path real_path(const std::string& name) {
    std::error_code failure;
    const path absolute = std::filesystem::absolute(name.empty() ? "." : name, failure);
    const path real = failure ? path() : std::filesystem::weakly_canonical(absolute, failure);
    return failure ? path() : real;
}

bool is_in(const path& inner, const path& outer) {
    return !outer.empty() && std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end()).first == outer.end();
}

// The source itself, and what an album may have of it elsewhere, through links.
std::list<std::string> places_of(const std::string& source) {
    std::list<std::string> places = {source};
    for (const char* name : {layout::original, layout::movie, layout::text, layout::thumb, layout::html}) {
        places.push_back(entry_path(source, name));
    }
    for (unsigned long level = 0; level <= highest_top_level; ++level) {
        places.push_back(entry_path(source, level_name(level)));
    }
    places.remove_if([](const std::string& place) { return !is_exist(place); });
    return places;
}

bool is_in_album(path directory) {
    for (; directory.has_relative_path(); directory = directory.parent_path()) {
        if (is_album(directory)) {
            return true;
        }
    }
    return false;
}

std::string unfit_contents(const std::string& directory) {
    std::list<std::string> files;
    std::list<std::string> directories;
    publish_record_t record;
    const std::error_code failure = load_record(record, directory);
    if (!failure) {
        return "";
    }
    if (libutils::list_files(files, directory) || libutils::list_directories(directories, directory)) {
        return ": can't be read.";
    }
    return files.empty() && directories.empty() ? "" : ": neither empty nor a published copy.";
}

}  // namespace

std::string unfit_copy(const publish_order_t& order) {
    if (order.directory.empty()) {
        return ": no name of a directory.";
    }
    const bool is_there = libutils::is_exist(order.directory);
    const std::string above = libutils::parent_directory(order.directory);
    if (is_there ? !libutils::is_directory(order.directory) : !libutils::is_directory(above.empty() ? "." : above)) {
        return is_there ? ": not a directory." : ": there is no directory above it.";
    }
    const path copy = real_path(order.directory);
    for (const std::string& place : places_of(order.source)) {
        const path real = real_path(place);
        if (copy.empty() || real.empty() || is_in(copy, real) || is_in(real, copy)) {
            return ": what is published and its copy can't lie in each other.";
        }
    }
    if (is_in_album(copy) || is_exist(entry_path(order.directory, layout::text))) {
        return ": an album or book, or inside one.";
    }
    return is_there ? unfit_contents(order.directory) : "";
}

}  // namespace taloram
