#include "album/pages/active_markup.h"

#include <algorithm>

#include "libutils/diagnostics.h"

namespace taloram {

namespace {

constexpr std::string_view blanks = " \t\n\v\f\r";
constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz";

std::string in_lower_case(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return lower;
}

// `text` begins with "on", letters and, after blanks or not, "=".
bool begins_with_event(std::string_view text) {
    constexpr std::string_view start = "on";
    if (!text.starts_with(start)) {
        return false;
    }
    const size_t end_of_name = text.find_first_not_of(letters, start.size());
    const size_t sign = text.find_first_not_of(blanks, end_of_name);
    return end_of_name != std::string_view::npos && end_of_name > start.size() && sign != std::string_view::npos &&
           text[sign] == '=';
}

// Attributes begin after blanks, "/" or the end of another's value.
bool has_event(std::string_view tag) {
    constexpr std::string_view borders = " \t\n\v\f\r/\"'";
    for (size_t at = 0; (at = tag.find_first_of(borders, at)) != std::string_view::npos; ++at) {
        if (begins_with_event(tag.substr(at + 1))) {
            return true;
        }
    }
    return false;
}

}  // namespace

bool is_active_markup(std::string_view text) {
    const std::string lower = in_lower_case(text);
    const std::string_view rest(lower);
    if (rest.find("<script") != std::string_view::npos || rest.find("javascript:") != std::string_view::npos) {
        return true;
    }
    for (size_t at = 0; (at = rest.find('<', at)) != std::string_view::npos; ++at) {
        const std::string_view name = rest.substr(at + 1, 1);
        if (name.empty() || letters.find(name) == std::string_view::npos) {
            continue;
        }
        const size_t end = std::min(rest.find('>', at), rest.size());
        if (has_event(rest.substr(at, end - at))) {
            return true;
        }
        at = end - 1;
    }
    return false;
}

void warn_of_active_markup(const std::string& subject, std::string_view text) {
    if (is_active_markup(text)) {
        libutils::report(subject, ": holds markup that runs a program in the browser; the pages show it as it is.");
    }
}

}  // namespace taloram
