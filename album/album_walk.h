#pragma once

#include <functional>
#include <string>

namespace taloram {

// What is done with the albums and books of a directory; each returns whether it succeeded.
struct album_visitor_t {
    std::function<bool(const std::string& album)> album;
    std::function<bool(const std::string& book)> book;  // after the albums below it
    bool follows_links = true;                          // to albums
};

// What became of a directory and all below it.
struct walk_outcome_t {
    bool succeeded = true;  // nothing failed
    bool has_album = false;
};

// Visits an album, or every album below a book, to any depth, in the order of names; a failure does not keep the others
// from being visited. The named directory is a book when it is no album; one below it counts as a book when it has txt/
// or an album below it. A symbolic link is followed to an album, and to nothing else: a link to a home directory must
// not bring all of it in. An album that is met twice is visited once.
//
// A directory that can't be listed is reported and is a failure; but one below the named directory that the user has no
// right to look into, where nobody can tell what it is (lost+found), is only reported.
walk_outcome_t visit_albums(const std::string& path, const album_visitor_t& visitor);

}  // namespace taloram
