#include "album/sums/sum_line.h"

#include <algorithm>

namespace taloram {

namespace {

constexpr size_t sum_length = 64;
constexpr std::string_view tag = "SHA256";
constexpr std::string_view blanks = " \t";

struct escape_t {
    char meant;
    char written;  // after a "\"
};
constexpr escape_t escapes[] = {{'\\', '\\'}, {'\n', 'n'}, {'\r', 'r'}};

std::string escaped(const std::string& path) {
    std::string text;
    for (const char c : path) {
        const auto* const escape =
            std::find_if(std::begin(escapes), std::end(escapes), [c](const escape_t& e) { return e.meant == c; });
        if (escape == std::end(escapes)) {
            text += c;
        } else {
            text += {'\\', escape->written};
        }
    }
    return text;
}

std::optional<std::string> unescaped(std::string_view text) {
    std::string path;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            path += text[i];
            continue;
        }
        ++i;
        const auto* const escape = std::find_if(std::begin(escapes), std::end(escapes), [&](const escape_t& e) {
            return i < text.size() && e.written == text[i];
        });
        if (escape == std::end(escapes)) {
            return std::nullopt;
        }
        path += escape->meant;
    }
    return path;
}

void skip_blanks(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
}

bool skip(std::string_view& text, std::string_view what) {
    const bool begins = text.substr(0, what.size()) == what;
    text.remove_prefix(begins ? what.size() : 0);
    return begins;
}

// The sum in lower case; nothing when `text` is none. No locale knows more digits.
std::optional<std::string> lower_sum(std::string_view text) {
    std::string sum(text);
    for (char& c : sum) {
        c = c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    const bool is_sum = sum.size() == sum_length && sum.find_first_not_of("0123456789abcdef") == std::string::npos;
    return is_sum ? std::optional(sum) : std::nullopt;
}

// The rest of a line after the tag and "(".
std::optional<sum_line_t> read_tagged(std::string_view rest) {
    const size_t end = rest.rfind(')');
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string path(rest.substr(0, end));
    rest.remove_prefix(end + 1);
    skip_blanks(rest);
    if (!skip(rest, "=")) {
        return std::nullopt;
    }
    skip_blanks(rest);
    const std::optional<std::string> sum = lower_sum(rest);
    return sum ? std::optional(sum_line_t{path, *sum}) : std::nullopt;
}

}  // namespace

std::optional<sum_line_t> sum_line_reader_t::read(std::string_view line) {
    skip_blanks(line);
    const bool has_escapes = skip(line, "\\");
    std::optional<sum_line_t> read;
    if (skip(line, tag)) {
        skip(line, " ");
        read = skip(line, "(") ? read_tagged(line) : std::nullopt;
    } else {
        read = read_sum_first(line);
    }
    if (read && has_escapes) {
        const std::optional<std::string> path = unescaped(read->path);
        return path ? std::optional(sum_line_t{*path, read->sum}) : std::nullopt;
    }
    return read;
}

std::optional<sum_line_t> sum_line_reader_t::read_sum_first(std::string_view line) {
    const std::optional<std::string> sum = lower_sum(line.substr(0, sum_length));
    line.remove_prefix(std::min(line.size(), sum_length));
    if (!sum || line.size() < 3 || blanks.find(line.front()) == std::string_view::npos) {
        return std::nullopt;
    }
    line.remove_prefix(1);
    const bool has_mode = line.front() == ' ' || line.front() == '*';
    if (!has_mode && has_mode_.value_or(false)) {
        return std::nullopt;
    }
    has_mode_ = has_mode && has_mode_.value_or(true);
    line.remove_prefix(*has_mode_ ? 1 : 0);
    return sum_line_t{std::string(line), *sum};
}

std::string written_sum_line(const sum_line_t& line) {
    const std::string path = escaped(line.path);
    return (path == line.path ? "" : "\\") + line.sum + "  " + path + '\n';
}

}  // namespace taloram
