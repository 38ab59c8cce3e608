#include "album/orphans.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <list>
#include <set>

#include "album/engine_step.h"
#include "libutils/diagnostics.h"
#include "libutils/files/directory.h"
#include "libutils/files/path.h"

namespace taloram {

namespace {

using names_t = std::set<std::string>;

bool remove_if_exists(const std::string& path) {
    return unlink(path.c_str()) == 0 || errno == ENOENT || errno == ENOTDIR;
}

}  // namespace

bool remove_file(const std::string& path) {
    if (!remove_if_exists(path)) {
        libutils::report(path, ": can't be removed, ", std::strerror(errno));
        return false;
    }
    return true;
}

namespace {

bool find_photos_with_sizes(names_t& photos, const std::string& album) {
    for (const std::string& directory : level_directories(album, highest_top_level)) {
        std::list<std::string> files;
        if (!list_if_there(files, directory)) {
            return false;
        }
        std::copy_if(files.begin(), files.end(), std::inserter(photos, photos.end()), is_photo);
    }
    return true;
}

// True for the zoom page of some level; `base` = the photograph's name without its extension.
bool is_zoom_page(const std::string& page, std::string& base) {
    base = page.substr(0, std::min(page.rfind('_'), page.size()));
    for (unsigned long level = 1; level <= highest_top_level; ++level) {
        if (page == base + zoom_page_name("", level)) {
            return true;
        }
    }
    return false;
}

// The zoom pages of photographs that `originals` does not have.
bool find_orphaned_pages(std::list<std::string>& pages, const std::string& album, const names_t& originals) {
    names_t bases;
    std::transform(originals.begin(), originals.end(), std::inserter(bases, bases.end()),
                   [](const std::string& photo) { return libutils::basename(photo); });
    if (!list_if_there(pages, entry_path(album, layout::html))) {
        return false;
    }
    pages.remove_if([&](const std::string& page) {
        std::string base;
        return !is_zoom_page(page, base) || bases.count(base) != 0;
    });
    return true;
}

std::string zoom_page_path(const std::string& album, const std::string& page) {
    return entry_path(entry_path(album, layout::html), page);
}

bool remove_orphans(const std::string& album, const names_t& photos, const std::list<std::string>& pages) {
    bool removed = true;
    for (const std::string& photo : photos) {
        for (const std::string& directory : level_directories(album, highest_top_level)) {
            removed = remove_file(entry_path(directory, photo)) && removed;
        }
    }
    for (const std::string& page : pages) {
        removed = remove_file(zoom_page_path(album, page)) && removed;
    }
    return removed;
}

void report_orphans(const std::string& album, const names_t& photos, const std::list<std::string>& pages) {
    for (const std::string& photo : photos) {
        libutils::report(original_path(album, photo), ": gone; --prune removes its sizes, thumbnail and pages.");
    }
    for (const std::string& page : pages) {
        const auto is_of_page = [&](const std::string& photo) {
            std::string base;
            return is_zoom_page(page, base) && base == libutils::basename(photo);
        };
        if (std::none_of(photos.begin(), photos.end(), is_of_page)) {
            libutils::report(zoom_page_path(album, page), ": its photograph is gone; --prune removes the page.");
        }
    }
}

}  // namespace

std::vector<std::string> find_reduced_sizes(const std::string& album, const std::string& photo) {
    std::vector<std::string> paths;
    for (const std::string& directory : level_directories(album, highest_top_level)) {
        const std::string path = entry_path(directory, photo);
        struct stat status {};
        if (lstat(path.c_str(), &status) == 0 || !libutils::is_absent(libutils::last_error())) {
            paths.push_back(path);
        }
    }
    return paths;
}

std::error_code remove_reduced_sizes(const std::string& album, const std::string& photo) {
    std::error_code first;
    for (const std::string& path : find_reduced_sizes(album, photo)) {
        if (!remove_if_exists(path)) {
            first = first ? first : libutils::last_error();
        }
    }
    return first;
}

bool remove_traces(const std::string& album, const std::string& photo) {
    bool removed = !remove_reduced_sizes(album, photo);
    for (unsigned long level = 1; level <= highest_top_level; ++level) {
        removed = remove_if_exists(zoom_page_path(album, zoom_page_name(photo, level))) && removed;
    }
    return removed;
}

void remove_empty_levels(const std::string& album) {
    for (unsigned long level = 0; level <= highest_top_level; ++level) {
        rmdir(entry_path(album, level_name(level)).c_str());
    }
}

bool prune_orphans(const std::string& album, orphans_t treatment) {
    if (treatment == orphans_t::keep) {
        return true;
    }
    const std::string directory = entry_path(album, layout::original);
    std::list<std::string> originals;
    if (const std::error_code failure = libutils::list_files(originals, directory)) {
        libutils::report(directory, ": getfiles failed, ", failure.message());
        return false;
    }
    names_t photos;
    std::list<std::string> pages;
    if (!find_photos_with_sizes(photos, album) ||
        !find_orphaned_pages(pages, album, {originals.begin(), originals.end()})) {
        return false;
    }
    for (const std::string& original : originals) {
        photos.erase(original);
    }
    if (treatment == orphans_t::remove) {
        return remove_orphans(album, photos, pages);
    }
    report_orphans(album, photos, pages);
    return true;
}

}  // namespace taloram
