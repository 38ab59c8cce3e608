#pragma once

#include <string>
#include <vector>

#include "album/make_album.h"
#include "album/publish/publish.h"
#include "tools/command_line.h"

// Compares a command with the disk before anything is touched. False after one line on standard error; the orders
// are what a right command asks for. Directories lose their trailing "/".
namespace talomake {

[[nodiscard]] bool check_album(const album_command_t& command, taloram::album_order_t& order);

[[nodiscard]] bool check_directories(const std::vector<std::string>& typed, std::vector<std::string>& directories);

// Directories that are not albums: a book's page in an album would replace the album's own.
[[nodiscard]] bool check_books(const std::vector<std::string>& typed, std::vector<std::string>& books);

[[nodiscard]] bool check_turn(const turn_command_t& command, std::string& album);

[[nodiscard]] bool check_publish(const publish_command_t& command, taloram::publish_order_t& order);

[[nodiscard]] bool check_photos(const std::vector<std::string>& photos);

}  // namespace talomake
