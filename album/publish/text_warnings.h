#pragma once

#include <string>

namespace taloram {

// One line on standard error for each text of an album or book that its pages show, comments and what cameras wrote,
// when it holds active markup (album/pages/active_markup.h).
void warn_of_texts(const std::string& directory, bool is_album);

}  // namespace taloram
