#include "album/album_walk.h"

#include <sys/stat.h>

#include <list>
#include <map>
#include <set>
#include <utility>

#include "album/album_layout.h"
#include "album/engine_step.h"
#include "libutils/diagnostics.h"
#include "libutils/files/directory.h"
#include "libutils/files/path.h"

namespace taloram {

namespace {

// True also when original/ is a link to a disk that is not mounted: an album's pages must not become those of a book.
bool is_album_entry(const std::string& path) {
    struct stat status {};
    return lstat(entry_path(path, layout::original).c_str(), &status) == 0;
}

// The subdirectories of a book by their names, true for symbolic links that lead to an album. A link to where nobody
// can look counts as a subdirectory; any other is left out.
std::error_code list_below(std::map<std::string, bool>& entries, const std::string& path) {
    std::list<std::string> directories;
    std::list<std::string> others;
    if (const std::error_code failure = libutils::list_directories(directories, path)) {
        return failure;
    }
    if (const std::error_code failure = libutils::list_files(others, path)) {
        return failure;
    }
    for (const std::string& name : directories) {
        entries.emplace(name, false);
    }
    for (const std::string& name : others) {
        const std::string target = entry_path(path, name);
        const bool is_link_to_album = is_album_entry(target);
        if (is_link_to_album || (libutils::is_directory(target) && is_closed(target))) {
            entries.emplace(name, is_link_to_album);
        }
    }
    return {};
}

class walk_t {
  public:
    explicit walk_t(const album_visitor_t& visitor) : visitor_(visitor) {}

    // Paths grow with every level, so that the system's limit on their length bounds the depth.
    walk_outcome_t visit(const std::string& path, bool named_by_user);

  private:
    walk_outcome_t visit_album(const std::string& album);

    const album_visitor_t& visitor_;
    std::set<std::pair<dev_t, ino_t>> visited_;  // albums
};

walk_outcome_t walk_t::visit_album(const std::string& album) {
    struct stat status {};
    const bool is_new = stat(album.c_str(), &status) != 0 || visited_.emplace(status.st_dev, status.st_ino).second;
    return {!is_new || visitor_.album(album), true};
}

walk_outcome_t walk_t::visit(const std::string& path, bool named_by_user) {
    if (is_album_entry(path)) {
        return visit_album(path);
    }
    std::map<std::string, bool> entries;
    if (const std::error_code failure = list_below(entries, path)) {
        if (!named_by_user && libutils::is_absent(failure)) {
            return {};  // a socket or a device, or gone
        }
        if (!named_by_user && is_closed(path)) {
            report_closed(path, failure);
            return {};
        }
        libutils::report(path, ": getdirs() failed, ", failure.message());
        return {false, false};
    }
    walk_outcome_t outcome;
    for (const auto& [name, is_link] : entries) {
        if (is_link && !visitor_.follows_links) {
            continue;
        }
        const std::string below_path = entry_path(path, name);
        const walk_outcome_t below = is_link ? visit_album(below_path) : visit(below_path, false);
        outcome.succeeded = below.succeeded && outcome.succeeded;
        outcome.has_album = below.has_album || outcome.has_album;
    }
    const bool is_book = named_by_user || outcome.has_album || is_exist(entry_path(path, layout::text));
    if (is_book && !visitor_.book(path)) {
        outcome.succeeded = false;
    }
    return outcome;
}

}  // namespace

walk_outcome_t visit_albums(const std::string& path, const album_visitor_t& visitor) {
    return walk_t(visitor).visit(path, true);
}

}  // namespace taloram
