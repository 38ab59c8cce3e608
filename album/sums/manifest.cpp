#include "album/sums/manifest.h"

#include <sys/stat.h>

#include <algorithm>

#include "album/album_layout.h"
#include "album/sums/sum_line.h"
#include "album/texts/text_file.h"
#include "libutils/diagnostics.h"
#include "libutils/files/new_file.h"
#include "libutils/text/text.h"

namespace taloram {

namespace {

// "./" before a name changes nothing; other ways to write a path are taken as other paths.
std::string plain_path(std::string path) {
    while (path.starts_with("./")) {
        path.erase(0, std::min(path.find_first_not_of('/', 1), path.size()));
    }
    return path;
}

std::string manifest_path(const std::string& album) {
    return entry_path(album, manifest_t::name);
}

}  // namespace

bool manifest_t::load(const std::string& album) {
    const std::string path = manifest_path(album);
    std::string text;
    if (const std::error_code failure = load_text(text, path)) {
        struct stat status {};
        // A link that leads nowhere stands for sums that are somewhere else.
        if (libutils::is_absent(failure) && lstat(path.c_str(), &status) != 0) {
            return true;
        }
        libutils::report(path, ": can't be read, ", failure.message());
        return false;
    }
    return parse(text, path);
}

bool manifest_t::parse(const std::string& text, const std::string& file) {
    size_t number = 0;
    bool agree = true;
    sum_line_reader_t reader;
    for (std::string line : split_lines(text)) {
        ++number;
        if (line.ends_with('\r')) {
            line.pop_back();
        }
        if (line.empty() || line.front() == '#') {
            remarks_ += line.empty() ? "" : line + '\n';
            continue;
        }
        const std::optional<sum_line_t> read = reader.read(line);
        if (!read || read->path.find('\0') != std::string::npos) {
            libutils::report(file, ": line ", number, " is not a sum and a path.");
            return false;
        }
        const auto [entry, is_first] = sums_.emplace(plain_path(read->path), read->sum);
        if (!is_first && entry->second != read->sum) {
            libutils::report(file, ": line ", number,
                             " contradicts an earlier one: ", libutils::printable(entry->first));
            agree = false;
        }
    }
    is_kept_ = true;
    return agree;
}

bool manifest_t::save(const std::string& album) {
    if (is_kept_ && !is_changed_) {
        return true;
    }
    std::string text = remarks_;
    for (const auto& [path, sum] : sums_) {
        text += written_sum_line({path, sum});
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
