#pragma once

#include <string>
#include <vector>

namespace talolib {

// A text of the user interface: its line in the catalogue file, counted from 0.
using e_message_t = unsigned;

// Loads the catalogue of `name` for the locale, else the locale-free one: from the current directory, then directly
// appended to `dir` (which ends in "/"; "" means along PATH), then from the installed catalogues. Sets the process's C
// locale from the environment; where that leaves ASCII and LANG names no other character set, as "C", "POSIX" and ""
// do, characters are those of UTF-8. Returns the path that was loaded; "" after a line on standard error when there is
// none.
std::string init_message(const char* dir, const char* name);

// The text in the locale's encoding, "message not loaded." for an unknown id. Valid until the next init_message().
[[nodiscard]] const char* getmsg(e_message_t id);

// `a` + " - " + `b`.
[[nodiscard]] std::string make_title(const char* a, const char* b);
void make_title2(std::string& title, const char* a, const char* b);

// Steps of the loader. The table's entries point into `buffer`, whose line ends (LF, CR LF or a lone CR) become NULs; a
// last line without a line feed is not counted.
[[nodiscard]] bool load_message(std::vector<char>& buffer, const char* path);
[[nodiscard]] size_t count_lines(const std::vector<char>& buffer);
void make_message_table(std::vector<const char*>& table, std::vector<char>& buffer, size_t lines);

}  // namespace talolib
