#include "album/copy_files.h"

#include <sys/stat.h>

#include <algorithm>
#include <iostream>

#include "album/engine_step.h"
#include "album/import_file.h"
#include "album/orphans.h"
#include "libutils/diagnostics.h"
#include "libutils/directory.h"
#include "libutils/file_copy.h"
#include "libutils/new_file.h"
#include "libutils/path.h"
#include "talolib/option.h"

namespace taloram {

namespace {

// The sizes of an earlier import are younger than any photograph, so that they would look up to date.
bool make_way(const std::string& album, const std::string& name) {
    return !is_photo(name) || remove_reduced_sizes(album, name);
}

bool has_date_of(const std::string& path, const std::string& source) {
    struct stat status {};
    struct stat source_status {};
    return stat(path.c_str(), &status) == 0 && stat(source.c_str(), &source_status) == 0 &&
           status.st_mtim.tv_sec == source_status.st_mtim.tv_sec && status.st_mtim.tv_nsec == 0;
}

// A copy from an earlier import. Where its date can't be set it belongs to somebody else and has to be replaced.
bool keep_same_copy(const import_file_t& file, const std::string& album, const std::string& name) {
    return has_same_copy(file) &&
           (has_date_of(file.destination, file.source) ||
            libutils::copydate(file.source.c_str(), file.destination.c_str())) &&
           make_way(album, name);
}

// The copy takes the place of the destination in one step: the name never stands for a half-written file, and another
// name of the old file keeps the old contents.
bool replace_with_copy(const import_file_t& file, const std::string& album, const std::string& name) {
    libutils::new_file_t copy(file.destination, libutils::staging_t::above);
    return !copy.open() && libutils::filecopy(file.source.c_str(), copy.current_path().c_str()) &&
           libutils::same_contents(file.source.c_str(), copy.current_path().c_str()) && make_way(album, name) &&
           !copy.commit();
}

bool copy_file(const std::string& srcdir, const std::string& name, const std::string& album) {
    const import_file_t file = locate_import(srcdir, name, album);
    if (!is_plain_name(name)) {
        return copy_failed(file.destination);
    }
    const bool copied = file.in_place ? is_exist(file.source) && make_way(album, name)
                                      : keep_same_copy(file, album, name) || replace_with_copy(file, album, name);
    return copied || copy_failed(file.destination);
}

}  // namespace

bool copy_failed(const std::string& destination) {
    libutils::report(destination, ": file copy failed.");
    return false;
}

bool copy_files(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
                progress_t& progress, const failed_file_t& failed) {
    libutils::mkdir(entry_path(album, layout::original).c_str());
    if (std::any_of(files.begin(), files.end(), [](const files_t& file) { return is_movie(file.filename); })) {
        libutils::mkdir(entry_path(album, layout::movie).c_str());
    }
    for (size_t i = 0; i < files.size(); ++i) {
        talolib::trace(std::cout, files[i].filename);
        if (!copy_file(srcdir, files[i].filename, album) && !failed(files[i])) {
            return false;
        }
        emit_progress(progress, i, files.size());
    }
    return true;
}

bool copyfiles(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
               progress_t& progress) {
    return copy_files(srcdir, files, album, progress, [](const files_t&) { return false; });
}

}  // namespace taloram
