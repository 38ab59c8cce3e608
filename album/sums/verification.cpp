#include "album/sums/verification.h"

#include <sys/stat.h>

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

using found_t = std::function<void(const flawed_file_t&)>;

// True when the file has the sum; else `found` is called, unless the work was not to go on.
bool has_sum(const std::string& path, const std::string& expected, const found_t& found,
             const libutils::goes_on_t& asked) {
    std::string sum;
    const std::error_code failure = sha256_of_file(sum, path, read_from_t::disk, asked);
    if (!failure && sum == expected) {
        return true;
    }
    if (!failure) {
        found({path, flaw_t::changed, ""});
    } else if (libutils::is_absent(failure)) {
        found({path, flaw_t::missing, ""});
    } else if (failure != std::errc::operation_canceled || libutils::goes_on(asked)) {
        found({path, flaw_t::unreadable, failure.message()});
    }
    return false;
}

// Files of one kind that have no sum; `none_found` becomes false when there are any. False, after a report, when the
// directory can't be listed.
bool find_unlisted(const std::string& album, const char* kind, const manifest_t& manifest, const found_t& found,
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
            found({entry_path(directory, name), flaw_t::unlisted, ""});
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

std::string flaw_text(const flawed_file_t& file) {
    switch (file.flaw) {
        case flaw_t::changed:
            return "changed.";
        case flaw_t::unreadable:
            return "changed, can't be read, " + file.reason;
        case flaw_t::missing:
            return "missing.";
        case flaw_t::unlisted:
            break;
    }
    return libutils::join_text("not in ", manifest_t::name, ".");
}

verify_result_t verify_album(const std::string& album, const found_t& found, progress_signals_t& progress) {
    verify_result_t result;
    manifest_t manifest;
    result.is_good = manifest.load(album);
    if (!manifest.is_kept()) {
        if (result.is_good) {
            libutils::report(album, ": has no ", manifest_t::name, ".");
        }
        result.has_sums = !result.is_good;
        result.is_good = false;
        return result;
    }
    result.has_sums = true;
    struct stat status {};
    if (stat(entry_path(album, manifest_t::name).c_str(), &status) == 0) {
        result.written_at = status.st_mtime;
    }
    const libutils::goes_on_t asked = lasting_goes_on(progress, result.stopped);
    for (const auto& [path, sum] : manifest.sums()) {
        const std::string file = path.starts_with('/') ? path : entry_path(album, path);
        const bool is_same = libutils::goes_on(asked) && has_sum(file, sum, found, asked);
        result.is_good = is_same && result.is_good;
        if (result.stopped) {
            return result;
        }
        emit_progress(progress.verify, result.count++, manifest.sums().size());
    }
    for (const char* kind : {layout::original, layout::movie}) {
        result.is_good = find_unlisted(album, kind, manifest, found, result.is_good) && result.is_good;
    }
    return result;
}

}  // namespace taloram
