#pragma once

#include <sigc++/sigc++.h>

#include <cstdint>
#include <string>
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

[[nodiscard]] bool is_exist(const std::string& path);

[[nodiscard]] bool is_album(const std::string& directory);

// Kinds of files, told by the extension in any case: ".jpg"; ".mov", ".mpg", ".mp4".
[[nodiscard]] bool is_photo(const std::string& filename);
[[nodiscard]] bool is_movie(const std::string& filename);

[[nodiscard]] std::string original_path(const std::string& album, const std::string& name);
[[nodiscard]] std::string thumb_path(const std::string& album, const std::string& name);
[[nodiscard]] std::string text_path(const std::string& album, const std::string& name);

// "size" and the level in decimal.
[[nodiscard]] std::string level_name(unsigned long level);

// The directories of a photograph with top level `top`: size0 to size<top>, then thumb, each behind `prefix`.
[[nodiscard]] std::vector<std::string> level_directories(const std::string& prefix, unsigned long top);

}  // namespace taloram
