#include "album/orphans.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <list>
#include <set>

#include "album/album_layout.h"
#include "libutils/diagnostics.h"
#include "libutils/directory.h"
#include "libutils/path.h"

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

// The photographs in a directory of the album; a directory that can't be listed has none.
names_t photos_in(const std::string& directory) {
    std::list<std::string> listing;
    if (!libutils::getfiles(listing, directory.c_str())) {
        return {};
    }
    names_t photos;
    std::copy_if(listing.begin(), listing.end(), std::inserter(photos, photos.end()), is_photo);
    return photos;
}

names_t photos_with_sizes(const std::string& album) {
    names_t photos;
    for (const std::string& directory : level_directories(album, highest_top_level)) {
        photos.merge(photos_in(directory));
    }
    return photos;
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
std::list<std::string> orphaned_pages(const std::string& album, const names_t& originals) {
    names_t bases;
    std::transform(originals.begin(), originals.end(), std::inserter(bases, bases.end()),
                   [](const std::string& photo) { return libutils::basename(photo); });
    std::list<std::string> pages;
    if (!libutils::getfiles(pages, entry_path(album, layout::html).c_str())) {
        return {};
    }
    pages.remove_if([&](const std::string& page) {
        std::string base;
        return !is_zoom_page(page, base) || bases.count(base) != 0;
    });
    return pages;
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

bool remove_reduced_sizes(const std::string& album, const std::string& photo) {
    bool removed = true;
    for (const std::string& directory : level_directories(album, highest_top_level)) {
        removed = remove_if_exists(entry_path(directory, photo)) && removed;
    }
    return removed;
}

bool remove_traces(const std::string& album, const std::string& photo) {
    bool removed = remove_reduced_sizes(album, photo);
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

bool treat_orphans(const std::string& album, orphans_t treatment) {
    if (treatment == orphans_t::keep) {
        return true;
    }
    const std::string directory = entry_path(album, layout::original);
    std::list<std::string> originals;
    if (!libutils::getfiles(originals, directory.c_str())) {
        libutils::report(directory, ": getfiles failed.");
        return false;
    }
    names_t photos = photos_with_sizes(album);
    for (const std::string& original : originals) {
        photos.erase(original);
    }
    const std::list<std::string> pages = orphaned_pages(album, {originals.begin(), originals.end()});
    if (treatment == orphans_t::remove) {
        return remove_orphans(album, photos, pages);
    }
    report_orphans(album, photos, pages);
    return true;
}

}  // namespace taloram
