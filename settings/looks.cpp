#include "settings/looks.h"

#include <algorithm>
#include <list>

#include "libutils/files/directory.h"
#include "libutils/files/path.h"
#include "libutils/files/read_file.h"
#include "libutils/text/text.h"
#include "settings/settings.h"
#include "talolib/locale_name.h"

namespace taloram {

namespace {

constexpr const char* extension = ".html";
constexpr uint64_t longest = 60'000;  // bytes; a GTK entry holds 65535
constexpr std::string_view comment_start = "<!--";
constexpr std::string_view comment_end = "-->";

std::string_view trimmed(std::string_view text) {
    constexpr const char* blanks = " \t\r\n";
    const size_t first = std::min(text.find_first_not_of(blanks), text.size());
    return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

void replace_all(std::string& text, std::string_view what, const std::string& by) {
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
}

// "de-AT" for de_AT.UTF-8. The texts of a process without a language are English.
std::string page_language() {
    const std::string locale = talolib::get_locale_name();
    std::string language = locale.substr(0, locale.find_first_of(".@"));
    std::replace(language.begin(), language.end(), '_', '-');
    constexpr const char* letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz-";
    const bool is_language = language.size() >= 2 && language.find_first_not_of(letters) == std::string::npos;
    return is_language && language != "POSIX" ? language : "en";
}

void take_description(look_t& look, std::string_view& text) {
    const size_t end = text.starts_with(comment_start) ? text.find(comment_end) : std::string_view::npos;
    if (end != std::string_view::npos) {
        look.description = trimmed(text.substr(comment_start.size(), end - comment_start.size()));
        text.remove_prefix(end + comment_end.size());
    }
}

std::string joined_lines(std::string_view text) {
    std::list<std::string> lines;
    libutils::separate_token(lines, std::string(text), "\n");
    std::string joined;
    for (const std::string& line : lines) {
        const std::string_view part = trimmed(line);
        joined.append(joined.empty() || part.empty() ? "" : " ").append(part);
    }
    return joined;
}

bool is_control(char c) {
    return (c >= 0 && c < ' ' && c != '\t') || c == '\x7F';
}

}  // namespace

std::error_code load_look(look_t& look, const std::string& path) {
    std::string text;
    if (const std::error_code failure = libutils::read_file(text, path, longest)) {
        return failure;
    }
    look_t loaded{libutils::basename(path), "", ""};
    std::string_view rest = trimmed(text);
    take_description(loaded, rest);
    loaded.line = joined_lines(rest);
    if (std::any_of(loaded.line.begin(), loaded.line.end(), is_control)) {
        return std::make_error_code(std::errc::illegal_byte_sequence);
    }
    replace_all(loaded.line, "charset=UTF-8", "charset=" + page_charset());
    replace_all(loaded.line, "lang ||= \"en\"", "lang ||= \"" + page_language() + '"');
    look = loaded;
    return {};
}

std::vector<look_t> installed_looks(const std::string& program_directory) {
    const std::string directory = program_directory + "looks";
    std::list<std::string> names;
    std::vector<look_t> looks;
    if (libutils::list_files(names, directory)) {
        return looks;
    }
    for (const std::string& name : names) {
        look_t look;
        if (name.ends_with(extension) && !load_look(look, directory + "/" + name)) {
            looks.push_back(look);
        }
    }
    return looks;
}

}  // namespace taloram
