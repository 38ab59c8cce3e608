#pragma once

#include <string>
#include <vector>

#include "libutils/system_error.h"

namespace taloram {

// A line for the head of every page, ready made: the setting html_header.
struct look_t {
    std::string name;         // of its file, without ".html"
    std::string description;  // may be empty
    std::string line;
};

// A look's file is the line's markup on any number of lines (docs/looks.md): a comment at its beginning is the
// description; the others are put on one line, each without the blanks around it. A look declares UTF-8 and English;
// the line declares the character set and language of the process's locale in their place.
//
// Fails for what can't be read, for more than fits into an entry of a window, and for control characters. No message.
[[nodiscard]] std::error_code load_look(look_t& look, const std::string& path);

// The looks that came with the program, sorted by name. `program_directory`: where the program lies, "" or with a "/"
// behind it. What is no look is left out; without the directory there are none.
[[nodiscard]] std::vector<look_t> installed_looks(const std::string& program_directory);

}  // namespace taloram
