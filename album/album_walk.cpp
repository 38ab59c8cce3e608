#include "album/album_walk.h"

#include <list>

#include "album/album_layout.h"
#include "libutils/diagnostics.h"
#include "libutils/directory.h"

namespace taloram {

namespace {

// Paths grow with every level, so that the system's limit on their length bounds the depth.
walk_outcome_t visit_below(const std::string& path, bool named_by_user, const album_visitor_t& visitor) {
    if (is_album(path)) {
        return {visitor.album(path), true};
    }
    std::list<std::string> names;
    if (!libutils::getdirs(names, path.c_str())) {
        libutils::report(path, ": getdirs() failed.");
        return {false, false};
    }
    walk_outcome_t outcome;
    for (const std::string& name : names) {
        const walk_outcome_t below = visit_below(entry_path(path, name), false, visitor);
        outcome.succeeded = below.succeeded && outcome.succeeded;
        outcome.has_album = below.has_album || outcome.has_album;
    }
    const bool is_book = named_by_user || outcome.has_album || is_exist(entry_path(path, layout::text));
    if (is_book && !visitor.book(path)) {
        outcome.succeeded = false;
    }
    return outcome;
}

}  // namespace

walk_outcome_t visit_albums(const std::string& path, const album_visitor_t& visitor) {
    return visit_below(path, true, visitor);
}

}  // namespace taloram
