#include "album/import/copy_files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <iterator>
#include <memory>
#include <utility>

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
bool can_stay(const import_file_t& file, const libutils::goes_on_t& asked) {
    struct stat status {};
    return has_same_copy(file, asked) && stat(file.destination.c_str(), &status) == 0 &&
           (has_date_of(status, file.source) ||
            (status.st_nlink == 1 && !libutils::copy_date(file.source, file.destination)));
}

// A copy on its way. Until it is in place it has no name that counts.
struct copy_t {
    const files_t* file;
    import_file_t where;
    std::unique_ptr<libutils::new_file_t> bytes;  // null when there is nothing to be put in place
    std::error_code failure;
};

// All the bytes, compared with their source; the disk has begun with them.
std::error_code write_copy(copy_t& copy, const libutils::goes_on_t& asked) {
    libutils::new_file_t& bytes = *copy.bytes;
    if (const std::error_code failure = bytes.open()) {
        return failure;
    }
    if (const std::error_code failure = libutils::copy_file(copy.where.source, bytes.current_path(), asked)) {
        return failure;
    }
    bytes.begin_flush();
    return libutils::same_contents(copy.where.source.c_str(), bytes.current_path().c_str(), asked)
               ? std::error_code()
               : make_error_code(std::errc::io_error);
}

std::error_code make_copy(copy_t& copy, const std::string& album, const libutils::goes_on_t& asked) {
    const std::string& name = copy.file->filename;
    const import_file_t& where = copy.where;
    if (!is_plain_name(name)) {
        return make_error_code(std::errc::invalid_argument);
    }
    if (const std::error_code failure = check_names(where, name, album)) {
        return failure;
    }
    if (where.in_place ? is_exist(where.source) : can_stay(where, asked)) {
        return is_photo(name) ? remove_reduced_sizes(album, name) : std::error_code();
    }
    if (where.in_place) {
        return make_error_code(std::errc::no_such_file_or_directory);
    }
    copy.bytes = std::make_unique<libutils::new_file_t>(where.destination, libutils::staging_t::above);
    return write_copy(copy, asked);
}

// The copy takes the place of the destination in one step: the name never stands for a half-written file, and another
// name of the old file keeps the old contents. Where that fails the old file has its sizes again.
std::error_code put_in_place(copy_t& copy, const std::string& album) {
    // Sizes of another photograph would look up to date, being younger: none may stand beside the copy.
    const std::string& name = copy.file->filename;
    set_aside_t old_sizes(album);
    for (const std::string& path : is_photo(name) ? find_reduced_sizes(album, name) : std::vector<std::string>()) {
        if (const std::error_code failure = old_sizes.add(path)) {
            return failure;
        }
    }
    const std::error_code failure = copy.bytes->commit();
    if (!failure) {
        old_sizes.remove();
    }
    return failure;
}

// Copies get their names when they are on the disk. It writes a good number of them while the next ones are copied: who
// waits for each waits for the disk all the time.
class copies_t {
  public:
    copies_t(const std::string& album, const copy_watch_t& watch) : album_(album), watch_(watch) {}

    // False when a failure or a stop ends the import. What was copied by a stop is whole and gets its name.
    [[nodiscard]] bool add(const std::string& srcdir, const files_t& file) {
        copy_t copy{&file, locate_import(srcdir, file.filename, album_), nullptr, {}};
        if (libutils::goes_on(watch_.goes_on)) {
            copy.failure = make_copy(copy, album_, watch_.goes_on);
        }
        if (!libutils::goes_on(watch_.goes_on)) {
            copy.bytes.reset();
            static_cast<void>(put_in_place());
            return false;
        }
        const bool is_failed = static_cast<bool>(copy.failure);
        waiting_.push_back(std::move(copy));
        return is_failed ? put_in_place() : waiting_.size() < most_waiting || put_in_place(most_waiting / 2);
    }

    // All of them.
    [[nodiscard]] bool put_in_place() { return put_in_place(waiting_.size()); }

  private:
    static constexpr size_t most_waiting = 32;

    // The oldest.
    [[nodiscard]] bool put_in_place(size_t count) {
        std::vector<copy_t> copies;
        std::move(waiting_.begin(), waiting_.begin() + static_cast<std::ptrdiff_t>(count), std::back_inserter(copies));
        waiting_.erase(waiting_.begin(), waiting_.begin() + static_cast<std::ptrdiff_t>(count));
        for (copy_t& copy : copies) {
            if (copy.bytes && !copy.failure) {
                copy.failure = copy.bytes->flush();
            }
        }
        for (copy_t& copy : copies) {
            if (copy.bytes && !copy.failure) {
                copy.failure = taloram::put_in_place(copy, album_);
            }
            if (copy.bytes && !copy.failure) {
                watch_.copied(*copy.file);
            }
            copy.bytes.reset();
            if (copy.failure) {
                copy_failed(copy.where.destination);
                if (!watch_.failed(*copy.file, copy.failure)) {
                    return false;
                }
            }
        }
        return true;
    }

    const std::string& album_;
    const copy_watch_t& watch_;
    std::vector<copy_t> waiting_;
};

}  // namespace

bool copy_failed(const std::string& destination) {
    libutils::report(destination, ": file copy failed.");
    return false;
}

bool copy_files(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
                progress_t& progress, const copy_watch_t& watch) {
    libutils::mkdir(entry_path(album, layout::original).c_str());
    if (std::any_of(files.begin(), files.end(), [](const files_t& file) { return is_movie(file.filename); })) {
        libutils::mkdir(entry_path(album, layout::movie).c_str());
    }
    copies_t copies(album, watch);
    for (size_t i = 0; i < files.size(); ++i) {
        talolib::trace(std::cout, files[i].filename);
        if (!copies.add(srcdir, files[i])) {
            return false;
        }
        emit_progress(progress, i, files.size());
    }
    return copies.put_in_place();
}

bool copyfiles(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
               progress_t& progress) {
    return copy_files(srcdir, files, album, progress,
                      {[](const files_t&, const std::error_code&) { return false; }, [](const files_t&) {}, {}});
}

}  // namespace taloram
