#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

// What the user typed. Values have the right form; nothing was compared with the disk yet.
namespace talomake {

enum class progress_mode_t { automatic, always, never };

// Options of the commands that make reduced sizes. What is empty leaves the setting as it is.
struct run_options_t {
    struct box_t {
        uint64_t width = 0;  // pixels
        uint64_t height = 0;
    };
    std::optional<box_t> shrink_size;
    std::optional<uint64_t> quality;  // 0 to 100
    std::optional<unsigned> jobs;     // photographs at work at the same time
    progress_mode_t progress = progress_mode_t::automatic;
    bool trace = false;
};

struct rotation_t {
    std::string name;
    uint64_t quarter_turns = 0;  // clockwise, 1 to 3
};

struct album_command_t {
    std::string from;
    std::string album;
    std::vector<std::string> files;  // empty: all
    std::optional<std::string> title;
    std::optional<std::string> head_file;
    std::optional<std::string> last_file;
    std::vector<rotation_t> rotations;
    bool verify = false;
    bool replace = false;  // files of the album that differ
    bool keep_going = false;
    run_options_t run;
};

struct update_command_t {
    std::vector<std::string> directories;
    bool prune = false;
    run_options_t run;
};

struct verify_command_t {
    std::vector<std::string> directories;
};

struct book_command_t {
    std::vector<std::string> directories;
};

struct turn_command_t {
    std::string album;
    uint64_t quarter_turns = 0;  // clockwise, 1 to 3
    std::vector<std::string> photos;
};

struct exif_command_t {
    bool html = false;
    std::vector<std::string> photos;
};

struct look_command_t {
    std::optional<std::string> name;  // empty: all are listed
    bool set = false;                 // into the settings file
};

struct publish_command_t {
    std::string source;     // an album or a book
    std::string directory;  // of the copy
    bool keep_data = false;
    bool prune = false;
};

struct card_command_t {
    std::vector<std::string> cards;
    std::string book;
    std::optional<std::string> album;
    bool check = false;
    bool list = false;
    run_options_t run;
};

using command_t = std::variant<album_command_t, update_command_t, verify_command_t, book_command_t, turn_command_t,
                               exif_command_t, look_command_t, publish_command_t, card_command_t>;

// The command to run. Empty when there is none: `status` is then what the program ends with, after help or the version
// went to standard output or one line about wrong use to standard error.
[[nodiscard]] std::optional<command_t> parse_command_line(int argc, const char* const* argv, int& status);

}  // namespace talomake
