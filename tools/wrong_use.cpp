#include "tools/wrong_use.h"

#include <algorithm>

namespace talomake {

std::string one_line(std::string text) {
    const auto is_control = [](char c) { return (c >= '\0' && c < ' ') || c == '\x7f'; };
    std::replace_if(text.begin(), text.end(), is_control, '?');
    return text;
}

}  // namespace talomake
