#include "album/sums/verification.h"

#include <list>
#include <string_view>

#include "album/album_layout.h"
#include "album/sums/checksum.h"
#include "libutils/diagnostics.h"
#include "libutils/files/directory.h"
#include "libutils/files/file_copy.h"
#include "libutils/files/flush.h"

namespace taloram {

namespace {

// What is wrong with a file; "" when nothing is.
std::string compare_with_sum(const std::string& path, const std::string& expected) {
    std::string sum;
    const std::error_code failure = sha256_of_file(sum, path, read_from_t::disk);
    if (!failure) {
        return sum == expected ? "" : "changed.";
    }
    if (libutils::is_absent(failure)) {
        return "missing.";
    }
    return libutils::join_text("changed, can't be read, ", failure.message());
}

// Files of one kind that have no sum; `none_found` becomes false when there are any. False, after a report, when the
// directory can't be listed.
bool find_unlisted(const std::string& album, const char* kind, const manifest_t& manifest, const finding_t& found,
                   bool& none_found) {
    const std::string directory = entry_path(album, kind);
    std::list<std::string> names;
    const std::error_code failure = libutils::list_files(names, directory);
    if (failure && !libutils::is_absent(failure)) {
        libutils::report(directory, ": can't be listed, ", failure.message());
        return false;
    }
    for (const std::string& name : names) {
        if ((is_photo(name) || is_movie(name)) && !manifest.sum_of(entry_path(kind, name))) {
            found(entry_path(directory, name), libutils::join_text("not in ", manifest_t::name, "."));
            none_found = false;
        }
    }
    return true;
}

}  // namespace

bool verify_copy(std::string& sum, const import_file_t& file, const manifest_t& manifest) {
    if (libutils::flush(file.destination) || sha256_of_file(sum, file.destination, read_from_t::disk)) {
        return false;
    }
    if (file.in_place) {
        return manifest.sum_of(file.path_in_album).value_or(sum) == sum;
    }
    std::string expected;
    return !sha256_of_file(expected, file.source, read_from_t::anywhere) && expected == sum;
}

bool keeps_sums(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
                bool replaces_files, const finding_t& found) {
    manifest_t manifest;
    if (!manifest.load(album)) {
        return false;
    }
    bool good = true;
    for (const files_t& entry : files) {
        const import_file_t file = locate_import(srcdir, entry.filename, album);
        const std::optional<std::string> noted = manifest.sum_of(file.path_in_album);
        std::string sum;
        // A source that can't be read replaces nothing, and of the album's own file the sum stays.
        const auto stays = [&] {
            return !replaces_files || libutils::same_contents(file.source.c_str(), file.destination.c_str());
        };
        if (noted && !file.in_place && !sha256_of_file(sum, file.source, read_from_t::anywhere) && sum != *noted &&
            stays()) {
            found(file.destination, libutils::join_text("has another sum in ", manifest_t::name, "."));
            good = false;
        }
    }
    return good;
}

bool flush_album_names(const std::string& album) {
    for (const char* name : {layout::original, layout::movie, layout::text, ".", ".."}) {
        const std::string directory = entry_path(album, name);
        const std::error_code failure = libutils::flush(directory);
        // Not every directory is there, and the one above may be closed to the user.
        const bool is_closed_above = failure == std::errc::permission_denied && name == std::string_view("..");
        if (failure && !libutils::is_absent(failure) && !is_closed_above) {
            libutils::report(directory, ": can't be brought to the disk, ", failure.message());
            return false;
        }
    }
    return true;
}

bool verify_album(const std::string& album, const finding_t& found, size_t& count) {
    manifest_t manifest;
    bool good = manifest.load(album);
    if (!manifest.is_kept()) {
        if (good) {
            libutils::report(album, ": has no ", manifest_t::name, ".");
        }
        return false;
    }
    for (const auto& [path, sum] : manifest.sums()) {
        const std::string file = path.starts_with('/') ? path : entry_path(album, path);
        const std::string wrong = compare_with_sum(file, sum);
        if (!wrong.empty()) {
            found(file, wrong);
            good = false;
        }
    }
    count = manifest.sums().size();
    for (const char* kind : {layout::original, layout::movie}) {
        good = find_unlisted(album, kind, manifest, found, good) && good;
    }
    return good;
}

}  // namespace taloram
