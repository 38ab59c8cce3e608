#include "album/sums/verification.h"

#include <list>
#include <string_view>

#include "album/album_layout.h"
#include "album/engine_step.h"
#include "album/sums/checksum.h"
#include "libutils/diagnostics.h"
#include "libutils/files/directory.h"
#include "libutils/files/file_copy.h"
#include "libutils/files/flush.h"

namespace taloram {

namespace {

// What is wrong with a file; "" when nothing is.
std::string compare_with_sum(const std::string& path, const std::string& expected, const libutils::goes_on_t& asked) {
    std::string sum;
    const std::error_code failure = sha256_of_file(sum, path, read_from_t::disk, asked);
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

bool verify_copy(std::string& sum, const import_file_t& file, const manifest_t& manifest,
                 const libutils::goes_on_t& asked) {
    if (libutils::flush(file.destination) || sha256_of_file(sum, file.destination, read_from_t::disk, asked)) {
        return false;
    }
    if (file.in_place) {
        return manifest.sum_of(file.path_in_album).value_or(sum) == sum;
    }
    std::string expected;
    return !sha256_of_file(expected, file.source, read_from_t::anywhere, asked) && expected == sum;
}

bool keeps_sums(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
                bool replaces_files, const finding_t& found, const libutils::goes_on_t& asked) {
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
            return !replaces_files || libutils::same_contents(file.source.c_str(), file.destination.c_str(), asked);
        };
        const bool is_found = noted && !file.in_place &&
                              !sha256_of_file(sum, file.source, read_from_t::anywhere, asked) && sum != *noted &&
                              stays();
        if (!libutils::goes_on(asked)) {
            return false;
        }
        if (is_found) {
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
    progress_signals_t unseen;
    const verify_result_t result = verify_album(album, found, unseen);
    count = result.count;
    return result.is_good;
}

verify_result_t verify_album(const std::string& album, const finding_t& found, progress_signals_t& progress) {
    verify_result_t result;
    manifest_t manifest;
    result.is_good = manifest.load(album);
    if (!manifest.is_kept()) {
        if (result.is_good) {
            libutils::report(album, ": has no ", manifest_t::name, ".");
        }
        return {};
    }
    result.count = manifest.sums().size();
    const libutils::goes_on_t asked = lasting_goes_on(progress, result.stopped);
    size_t index = 0;
    for (const auto& [path, sum] : manifest.sums()) {
        const std::string file = path.starts_with('/') ? path : entry_path(album, path);
        const std::string wrong = libutils::goes_on(asked) ? compare_with_sum(file, sum, asked) : "";
        if (result.stopped) {
            result.is_good = false;
            return result;
        }
        if (!wrong.empty()) {
            found(file, wrong);
            result.is_good = false;
        }
        emit_progress(progress.verify, index++, result.count);
    }
    for (const char* kind : {layout::original, layout::movie}) {
        result.is_good = find_unlisted(album, kind, manifest, found, result.is_good) && result.is_good;
    }
    return result;
}

}  // namespace taloram
