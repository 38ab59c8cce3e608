#pragma once

#include <sigc++/sigc++.h>

#include <cstdint>
#include <string>
#include <system_error>
#include <vector>

// Where everything lies in an album directory:
//
//   original/      the photographs as copied            html/<base>_<k>.html   zoom pages
//   size<k>/       level k: level 0 halved k times      index.html, list.html  the album's pages
//   thumb/         thumbnails                           txt/                   comments, count.txt, other files
//   movie/         movies
//
// A directory with original/ is an album; otherwise one with txt/ is a book. An album's path has no trailing slash.
namespace taloram {

// Progress of a long operation: (i + 1) / n after each of its n files.
using progress_t = sigc::signal<void, double>;

// One file chosen for import.
struct files_t {
    std::string filename;           // inside the source directory, without a directory part
    uint64_t rightrotatecount = 0;  // clockwise quarter turns asked for by the user
};

// Names inside an album or book, as files and as links.
namespace layout {
constexpr const char* original = "original";
constexpr const char* movie = "movie";
constexpr const char* text = "txt";
constexpr const char* thumb = "thumb";
constexpr const char* html = "html";
constexpr const char* index_page = "index.html";
constexpr const char* list_page = "list.html";
constexpr const char* count_text = "count.txt";
constexpr const char* head_text = "head.txt";
constexpr const char* last_text = "last.txt";
}  // namespace layout

// No photograph's top level is higher: a JPEG picture's sides have 16 bits, which 16 halvings use up (ITU-T T.81
// B.2.2).
constexpr unsigned long highest_top_level = 16;

[[nodiscard]] bool is_exist(const std::string& path);

[[nodiscard]] bool is_album(const std::string& directory);

// True when the user has no right to look into a directory, so that nobody can tell whether it is an album or a book:
// the system's own lost+found for instance.
[[nodiscard]] bool is_closed(const std::string& directory);

// True for an album whose import was stopped while it copied: there are originals, and thumb/ is not there yet. Any
// other directory without thumb/ is a book or an album without photographs.
[[nodiscard]] bool is_import_interrupted(const std::string& directory);

// True for a directory that is no album and has a book's page or albums; false also when it can't be listed.
[[nodiscard]] bool is_book(const std::string& directory);

// Kinds of files, told by the extension in any case: ".jpg"; ".mov", ".mpg", ".mp4".
[[nodiscard]] bool is_photo(const std::string& filename);
[[nodiscard]] bool is_movie(const std::string& filename);

// True when `filename` names an entry of a directory rather than a way out of it.
[[nodiscard]] bool is_plain_name(const std::string& filename);

// A directory that is there and can't be listed to its end.
struct unlisted_t {
    std::string path;
    std::error_code reason;

    explicit operator bool() const { return static_cast<bool>(reason); }
};

// The photographs of an album in the order of its pages, by the bytes of their names, with those that lost their
// thumbnail; its movies likewise. Returns the first of the directories that can't be listed; the list then holds what
// the others have.
[[nodiscard]] unlisted_t list_photos(std::vector<std::string>& photos, const std::string& album);
[[nodiscard]] unlisted_t list_movies(std::vector<std::string>& movies, const std::string& album);

// What is called `name` in an album, a book or one of their directories; in "", the current directory, the bare name.
[[nodiscard]] std::string entry_path(const std::string& directory, const std::string& name);

[[nodiscard]] std::string original_path(const std::string& album, const std::string& name);
[[nodiscard]] std::string thumb_path(const std::string& album, const std::string& name);
[[nodiscard]] std::string text_path(const std::string& album, const std::string& name);

// The directory of an album, as a name, that a file is imported into by its kind.
[[nodiscard]] const char* directory_of_kind(const std::string& filename);

// The page in html/ of a photograph's level `level`. Photographs whose names differ in the extension share it.
[[nodiscard]] std::string zoom_page_name(const std::string& photo, unsigned long level);

// "size" and the level in decimal.
[[nodiscard]] std::string level_name(unsigned long level);

// True for the name of a level that a photograph can have.
[[nodiscard]] bool is_level_name(const std::string& name);

// The directories in `album` of a photograph with top level `top`: size0 to size<top>, then thumb. Of "" they are the
// names that links use.
[[nodiscard]] std::vector<std::string> level_directories(const std::string& album, unsigned long top);

}  // namespace taloram
