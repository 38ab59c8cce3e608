#pragma once

#include <optional>
#include <string>
#include <vector>

#include "album/album_layout.h"
#include "tools/command_line.h"

// Compares a command with the disk before anything is touched. False after one line on standard error; the jobs are
// what a right command asks for. Directories lose their trailing "/".
namespace talomake {

struct album_job_t {
    std::string from;
    std::string album;
    std::vector<taloram::files_t> files;
    std::optional<std::string> head;  // the text, where an option named a file
    std::optional<std::string> last;
};

[[nodiscard]] bool check_album(const album_command_t& command, album_job_t& job);

[[nodiscard]] bool check_directories(const std::vector<std::string>& typed, std::vector<std::string>& directories);

// Directories that are not albums: a book's page in an album would replace the album's own.
[[nodiscard]] bool check_books(const std::vector<std::string>& typed, std::vector<std::string>& books);

[[nodiscard]] bool check_turn(const turn_command_t& command, std::string& album);

[[nodiscard]] bool check_photos(const std::vector<std::string>& photos);

}  // namespace talomake
