#include "album/import/copy_files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>

#include "album/engine_step.h"
#include "album/import/import_file.h"
#include "album/import/set_aside.h"
#include "album/orphans.h"
#include "album/sizes/reduced_sizes.h"
#include "libgr/jpeg/jpegdata.h"
#include "libgr/jpeg/jpeginfo.h"
#include "libutils/diagnostics.h"
#include "libutils/files/directory.h"
#include "libutils/files/file_copy.h"
#include "libutils/files/new_file.h"
#include "talolib/option.h"

namespace taloram {

namespace {

// The name of the last zoom page that a photograph gets, "" when it gets none that could be too long for `longest`.
std::string last_zoom_page(const import_file_t& file, const std::string& name, size_t longest) {
    if (zoom_page_name(name, highest_top_level).size() <= longest) {
        return "";
    }
    libgr::jpegdata_t data;
    libgr::jpeginfo_t info;
    const bool is_readable = data.load(file.source.c_str()) && info.analyze_markers(data);
    const unsigned long level = is_readable ? top_level(info.width, info.height) : 0;
    return level == 0 ? "" : zoom_page_name(name, level);
}

// A photograph whose pages can't be written would end every later import and update.
std::error_code check_names(const import_file_t& file, const std::string& name, const std::string& album) {
    const std::string pages = entry_path(album, layout::html);
    const long longest = pathconf((is_exist(pages) ? pages : album).c_str(), _PC_NAME_MAX);
    if (!is_photo(name) || longest < 0) {
        return {};
    }
    const std::string page = last_zoom_page(file, name, static_cast<size_t>(longest));
    if (page.size() <= static_cast<size_t>(longest)) {
        return {};
    }
    const std::error_code failure = make_error_code(std::errc::filename_too_long);
    libutils::report(entry_path(pages, page), ": ", failure.message());
    return failure;
}

bool has_date_of(const struct stat& status, const std::string& source) {
    struct stat source_status {};
    return stat(source.c_str(), &source_status) == 0 && status.st_mtim.tv_sec == source_status.st_mtim.tv_sec &&
           status.st_mtim.tv_nsec == 0;
}

// The copy of an earlier import stays when it has the source's date or can be given it. Another name of the file may be
// another album's, which keeps its date.
bool can_stay(const import_file_t& file) {
    struct stat status {};
    return has_same_copy(file) && stat(file.destination.c_str(), &status) == 0 &&
           (has_date_of(status, file.source) ||
            (status.st_nlink == 1 && !libutils::copy_date(file.source, file.destination)));
}

// The copy takes the place of the destination in one step: the name never stands for a half-written file, and another
// name of the old file keeps the old contents. Where that fails the old file has its sizes again.
std::error_code replace_with_copy(const import_file_t& file, const std::string& album, const std::string& name) {
    libutils::new_file_t copy(file.destination, libutils::staging_t::above);
    if (const std::error_code failure = copy.open()) {
        return failure;
    }
    if (const std::error_code failure = libutils::copy_file(file.source, copy.current_path())) {
        return failure;
    }
    if (!libutils::same_contents(file.source.c_str(), copy.current_path().c_str())) {
        return make_error_code(std::errc::io_error);
    }
    // Sizes of another photograph would look up to date, being younger: none may stand beside the copy.
    set_aside_t old_sizes(album);
    for (const std::string& path : is_photo(name) ? find_reduced_sizes(album, name) : std::vector<std::string>()) {
        if (const std::error_code failure = old_sizes.add(path)) {
            return failure;
        }
    }
    const std::error_code failure = copy.commit();
    if (!failure) {
        old_sizes.remove();
    }
    return failure;
}

std::error_code copy_file(const std::string& srcdir, const std::string& name, const std::string& album) {
    const import_file_t file = locate_import(srcdir, name, album);
    if (!is_plain_name(name)) {
        return make_error_code(std::errc::invalid_argument);
    }
    if (const std::error_code failure = check_names(file, name, album)) {
        return failure;
    }
    if (file.in_place ? is_exist(file.source) : can_stay(file)) {
        return is_photo(name) ? remove_reduced_sizes(album, name) : std::error_code();
    }
    return file.in_place ? make_error_code(std::errc::no_such_file_or_directory) : replace_with_copy(file, album, name);
}

}  // namespace

bool copy_failed(const std::string& destination) {
    libutils::report(destination, ": file copy failed.");
    return false;
}

bool copy_files(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
                progress_t& progress, const failed_copy_t& failed) {
    libutils::mkdir(entry_path(album, layout::original).c_str());
    if (std::any_of(files.begin(), files.end(), [](const files_t& file) { return is_movie(file.filename); })) {
        libutils::mkdir(entry_path(album, layout::movie).c_str());
    }
    for (size_t i = 0; i < files.size(); ++i) {
        talolib::trace(std::cout, files[i].filename);
        if (const std::error_code reason = copy_file(srcdir, files[i].filename, album)) {
            copy_failed(locate_import(srcdir, files[i].filename, album).destination);
            if (!failed(files[i], reason)) {
                return false;
            }
        }
        emit_progress(progress, i, files.size());
    }
    return true;
}

bool copyfiles(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
               progress_t& progress) {
    return copy_files(srcdir, files, album, progress, [](const files_t&, const std::error_code&) { return false; });
}

}  // namespace taloram
