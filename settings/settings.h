#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace taloram {

// The settings of the process. Each field is named after its key in the settings file.
struct global_t {
    std::string from;              // the camera directory
    std::string album;             // the album directory: the book of all albums
    uint64_t shrink_width = 1024;  // pixels; the reduced sizes end with the first that fits into width x height
    uint64_t shrink_height = 768;
    uint64_t jpeg_compress = 100;   // quality of written copies, 0 to 100
    uint64_t horizontal_items = 5;  // photographs in a row of the dialogs' grids
    std::string html_header;        // goes into the head of every page
    std::string html_address;       // footer of every page

    // The defaults, some of which depend on HOME and LANG.
    global_t();
};

extern global_t g_global;

// The character set that pages declare: that of the Japanese locales that have another one than UTF-8, else UTF-8.
[[nodiscard]] std::string page_charset();

// What the settings file goes on saying about a path that the command line replaced for this run.
struct stored_paths_t {
    std::optional<std::string> from;
    std::optional<std::string> album;
};

extern stored_paths_t g_stored_paths;

}  // namespace taloram
