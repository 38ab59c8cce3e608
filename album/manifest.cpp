#include "album/manifest.h"

#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <string_view>

#include "album/album_layout.h"
#include "album/text_file.h"
#include "libutils/diagnostics.h"
#include "libutils/new_file.h"

namespace taloram {

namespace {

constexpr size_t sum_length = 64;               // hexadecimal digits
constexpr off_t longest_manifest = 256L << 20;  // bytes; some million files

struct escape_t {
    char meant;
    char written;  // behind a "\"
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

bool unescape(std::string& path, std::string_view text) {
    path.clear();
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
            return false;
        }
        path += escape->meant;
    }
    return true;
}

bool is_sum(std::string_view text) {
    return text.size() == sum_length &&
           std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isxdigit(c) != 0; });
}

std::string manifest_path(const std::string& album) {
    return entry_path(album, manifest_t::name);
}

}  // namespace

bool manifest_t::load(const std::string& album) {
    const std::string path = manifest_path(album);
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0 && errno == ENOENT) {
        return true;
    }
    std::string text;
    if (stat(path.c_str(), &status) != 0 || status.st_size > longest_manifest || load_text(text, path)) {
        libutils::report(path, ": can't be read.");
        return false;
    }
    size_t number = 0;
    for (const std::string& line : split_lines(text)) {
        ++number;
        if (!parse_line(line)) {
            libutils::report(path, ": line ", number, " is not a sum and a path.");
            return false;
        }
    }
    is_kept_ = true;
    return true;
}

bool manifest_t::parse_line(const std::string& line) {
    std::string_view rest = line;
    const bool has_escapes = !rest.empty() && rest.front() == '\\';
    rest.remove_prefix(has_escapes ? 1 : 0);
    // Behind the sum stand a blank and the mode: a blank, or "*" for what is called binary.
    if (rest.size() < sum_length + 3 || rest[sum_length] != ' ' ||
        (rest[sum_length + 1] != ' ' && rest[sum_length + 1] != '*')) {
        return false;
    }
    std::string sum(rest.substr(0, sum_length));
    if (!is_sum(sum)) {
        return false;
    }
    std::transform(sum.begin(), sum.end(), sum.begin(), [](unsigned char c) { return std::tolower(c); });
    rest.remove_prefix(sum_length + 2);
    std::string path(rest);
    if (has_escapes && !unescape(path, rest)) {
        return false;
    }
    sums_[path] = sum;
    return true;
}

bool manifest_t::save(const std::string& album) {
    if (is_kept_ && !is_changed_) {
        return true;
    }
    std::string text;
    for (const auto& [path, sum] : sums_) {
        const std::string written = escaped(path);
        text += (written == path ? "" : "\\") + sum + "  " + written + '\n';
    }
    libutils::new_file_t file(manifest_path(album), libutils::staging_t::beside);
    file.open_as_old({libutils::links_t::others_t::refused, album});
    file.write(text);
    if (const std::error_code failure = file.commit_to_disk()) {
        libutils::report(manifest_path(album), ": can't be written, ", failure.message());
        return false;
    }
    is_kept_ = true;
    is_changed_ = false;
    return true;
}

void manifest_t::set(const std::string& path, const std::string& sum) {
    std::string& noted = sums_[path];
    is_changed_ = is_changed_ || noted != sum;
    noted = sum;
}

void manifest_t::remove(const std::string& path) {
    is_changed_ = sums_.erase(path) != 0 || is_changed_;
}

std::optional<std::string> manifest_t::sum_of(const std::string& path) const {
    const auto found = sums_.find(path);
    return found == sums_.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace taloram
