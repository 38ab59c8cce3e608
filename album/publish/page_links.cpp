#include "album/publish/page_links.h"

#include <sys/stat.h>

#include <algorithm>
#include <charconv>
#include <list>

#include "album/album_layout.h"
#include "libutils/files/path.h"
#include "libutils/files/system_path.h"
#include "libutils/text/text.h"

namespace taloram {

namespace {

constexpr std::string_view blanks = " \t\n\f\r";
constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::string_view raw_texts[] = {"script", "style",  "title",   "textarea",
                                          "xmp",    "iframe", "noembed", "noframes"};

bool is_letter(char c) {
    return letters.find(c) != std::string_view::npos;
}

// Takes what comes before the first of `ends` off the text.
std::string_view take_until(std::string_view& text, std::string_view ends) {
    const std::string_view taken = text.substr(0, text.find_first_of(ends));
    text.remove_prefix(taken.size());
    return taken;
}

void skip(std::string_view& text, std::string_view characters) {
    text.remove_prefix(std::min(text.find_first_not_of(characters), text.size()));
}

void skip_behind(std::string_view& text, std::string_view end) {
    const size_t at = text.find(end);
    text.remove_prefix(at == std::string_view::npos ? text.size() : at + end.size());
}

struct attribute_t {
    std::string_view name;
    std::string_view value;
};

// The next attribute of a tag; empty at its end, where `rest` begins with ">" or is empty.
std::optional<attribute_t> take_attribute(std::string_view& rest) {
    constexpr std::string_view ends_a_name = "= \t\n\f\r/>";
    skip(rest, " \t\n\f\r/");
    if (rest.empty() || rest.front() == '>') {
        return std::nullopt;
    }
    // A name may begin with "=".
    attribute_t attribute{rest.substr(0, rest.find_first_of(ends_a_name, 1)), {}};
    rest.remove_prefix(attribute.name.size());
    std::string_view value = rest;
    skip(value, blanks);
    if (value.empty() || value.front() != '=') {
        return attribute;
    }
    value.remove_prefix(1);
    skip(value, blanks);
    if (!value.empty() && (value.front() == '"' || value.front() == '\'')) {
        const std::string_view quote = value.substr(0, 1);
        value.remove_prefix(1);
        attribute.value = take_until(value, quote);
        value.remove_prefix(std::min<size_t>(value.size(), 1));
    } else {
        attribute.value = take_until(value, " \t\n\f\r>");
    }
    rest = value;
    return attribute;
}

std::optional<unsigned> parse_number(std::string_view digits, int base) {
    unsigned value = 0;
    const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
    return failure == std::errc() && end == digits.data() + digits.size() ? std::optional(value) : std::nullopt;
}

// The character of a reference such as "amp" or "#38": those that addresses need, of one byte.
std::optional<char> referenced_character(std::string_view name) {
    constexpr std::pair<std::string_view, char> named[] = {
        {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
    for (const auto& [text, character] : named) {
        if (name == text) {
            return character;
        }
    }
    if (!name.starts_with('#')) {
        return std::nullopt;
    }
    const bool is_hexadecimal = name.size() > 1 && (name[1] == 'x' || name[1] == 'X');
    const auto code = parse_number(name.substr(is_hexadecimal ? 2 : 1), is_hexadecimal ? 16 : 10);
    return code && *code > 0 && *code < 128 ? std::optional(static_cast<char>(*code)) : std::nullopt;
}

std::string without_references(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        out += take_until(text, "&");
        const size_t end = text.substr(0, 10).find(';');
        const auto character =
            end == std::string_view::npos ? std::nullopt : referenced_character(text.substr(1, end - 1));
        if (!text.empty()) {
            out += character.value_or('&');
            text.remove_prefix(character ? end + 1 : 1);
        }
    }
    return out;
}

// A number and "w", "h" or "x".
bool is_descriptor(std::string_view text) {
    double value = 0;
    const char* const last = text.data() + text.size() - 1;
    const auto [end, failure] = std::from_chars(text.data(), last, value);
    return failure == std::errc() && end == last && std::string_view("whx").find(*last) != std::string_view::npos;
}

void add_set(std::vector<std::string>& links, std::string_view set) {
    while (true) {
        skip(set, " \t\n\f\r,");
        if (set.empty()) {
            return;
        }
        std::string_view address = take_until(set, blanks);
        bool is_valid = true;
        if (address.ends_with(',')) {
            address = address.substr(0, address.find_last_not_of(',') + 1);
        } else {
            std::string_view descriptors = take_until(set, ",");
            for (skip(descriptors, blanks); !descriptors.empty(); skip(descriptors, blanks)) {
                is_valid = is_descriptor(take_until(descriptors, blanks)) && is_valid;
            }
        }
        if (is_valid) {
            links.emplace_back(address);
        }
    }
}

void add_links(std::vector<std::string>& links, const attribute_t& attribute) {
    const std::string value = without_references(attribute.value);
    if (libutils::equals_nocase(attribute.name, "href") || libutils::equals_nocase(attribute.name, "src")) {
        links.push_back(value);
    } else if (libutils::equals_nocase(attribute.name, "srcset")) {
        add_set(links, value);
    }
}

// `rest` begins behind the end of a start tag `name`.
void skip_raw_text(std::string_view& rest, std::string_view name) {
    if (std::none_of(std::begin(raw_texts), std::end(raw_texts),
                     [name](std::string_view raw) { return libutils::equals_nocase(name, raw); })) {
        return;
    }
    while (!rest.empty()) {
        skip_behind(rest, "</");
        if (libutils::begins_with_nocase(rest, name)) {
            return;
        }
    }
}

// `rest` begins with the name of a start tag.
void take_tag(std::vector<std::string>& links, std::string_view& rest) {
    const std::string_view name = take_until(rest, " \t\n\f\r/>");
    std::vector<std::string> found;
    while (const auto attribute = take_attribute(rest)) {
        add_links(found, *attribute);
    }
    if (!rest.empty()) {
        links.insert(links.end(), found.begin(), found.end());
        skip_raw_text(rest, name);
    }
}

bool has_scheme(std::string_view link) {
    const std::string_view scheme = link.substr(0, link.find(':'));
    constexpr std::string_view others = "0123456789+-.";
    return scheme.size() < link.size() && !scheme.empty() && is_letter(scheme.front()) &&
           std::all_of(scheme.begin(), scheme.end(),
                       [&](char c) { return is_letter(c) || others.find(c) != std::string_view::npos; });
}

// "%20" becomes a blank; what only looks like it stays.
std::string without_escapes(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        const auto code = text.front() == '%' && text.size() > 2 ? parse_number(text.substr(1, 2), 16) : std::nullopt;
        out += code ? static_cast<char>(*code) : text.front();
        text.remove_prefix(code ? 3 : 1);
    }
    return out;
}

// Takes the line ends and tabulators away, which browsers do not see, and the blanks around.
std::string without_blanks(std::string_view link) {
    std::string out(link);
    std::erase_if(out, [](char c) { return c == '\t' || c == '\n' || c == '\r'; });
    out.erase(0, std::min(out.find_first_not_of(blanks), out.size()));
    out.erase(out.find_last_not_of(blanks) + 1);
    return out;
}

std::string normal_path(std::string_view path) {
    std::list<std::string_view> parts;
    while (!path.empty()) {
        const std::string_view part = take_until(path, "/");
        skip(path, "/");
        if (part == ".." && !parts.empty() && parts.back() != "..") {
            parts.pop_back();
        } else if (!part.empty() && part != ".") {
            parts.push_back(part);
        }
    }
    std::string normal;
    for (const std::string_view part : parts) {
        normal += (normal.empty() ? "" : "/") + std::string(part);
    }
    return normal;
}

}  // namespace

std::vector<std::string> links_of_page(std::string_view page) {
    std::vector<std::string> links;
    for (std::string_view rest = page; !rest.empty();) {
        skip_behind(rest, "<");
        if (rest.starts_with("!--")) {
            skip_behind(rest, "-->");
        } else if (rest.starts_with('!') || rest.starts_with('?') || rest.starts_with('/')) {
            skip_behind(rest, ">");
        } else if (!rest.empty() && is_letter(rest.front())) {
            take_tag(links, rest);
        }
    }
    return links;
}

std::optional<std::string> resolve_link(const std::string& page, std::string_view link) {
    const std::string address = without_blanks(link);
    const std::string path = without_escapes(std::string_view(address).substr(0, address.find_first_of("?#")));
    if (has_scheme(address) || path.empty() || path.front() == '/') {
        return std::nullopt;
    }
    return normal_path(libutils::directory_part(page) + path);
}

std::string file_of_link(const std::string& directory, const std::string& path) {
    const std::string file = libutils::is_directory(entry_path(directory, path.empty() ? "." : path))
                                 ? entry_path(path, layout::index_page)
                                 : path;
    struct stat status {};
    const bool is_file = stat(entry_path(directory, file).c_str(), &status) == 0 && S_ISREG(status.st_mode);
    return is_file ? file : "";
}

}  // namespace taloram
