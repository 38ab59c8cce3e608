#include "album/import.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "album/album_pages.h"
#include "album/engine_step.h"
#include "album/reduced_sizes.h"
#include "libutils/diagnostics.h"
#include "libutils/directory.h"
#include "libutils/file_copy.h"
#include "libutils/path.h"
#include "talolib/option.h"

namespace taloram {

namespace {

const char* destination_directory(const std::string& filename) {
    if (is_photo(filename)) {
        return layout::original;
    }
    return is_movie(filename) ? layout::movie : layout::text;
}

bool copy_failed(const std::string& destination) {
    libutils::report(destination, ": file copy failed.");
    return false;
}

bool remove_if_exists(const std::string& path) {
    return unlink(path.c_str()) == 0 || errno == ENOENT || errno == ENOTDIR;
}

// The sizes of an earlier import are younger than any photograph, so that they would look up to date.
bool remove_reduced_sizes(const std::string& album, const std::string& name) {
    bool removed = true;
    for (const std::string& directory : level_directories(album, highest_top_level)) {
        removed = remove_if_exists(entry_path(directory, name)) && removed;
    }
    return removed;
}

bool make_way(const std::string& album, const std::string& name) {
    return !is_photo(name) || remove_reduced_sizes(album, name);
}

// The copy takes the place of the destination in one step: the name never stands for a half-written file, and another
// name of the old file keeps the old contents.
bool replace_with_copy(const std::string& source, const std::string& destination, const std::string& album,
                       const std::string& name) {
    const std::string copy = incomplete_path(album);
    const bool replaced = remove_if_exists(copy) && libutils::filecopy(source.c_str(), copy.c_str()) &&
                          libutils::same_contents(source.c_str(), copy.c_str()) && make_way(album, name) &&
                          std::rename(copy.c_str(), destination.c_str()) == 0;
    if (!replaced) {
        unlink(copy.c_str());
    }
    return replaced;
}

bool copy_file(const std::string& srcdir, const std::string& name, const std::string& album) {
    const std::string directory = entry_path(album, destination_directory(name));
    const std::string source = srcdir + "/" + name;
    const std::string destination = entry_path(directory, name);
    if (!is_plain_name(name)) {
        return copy_failed(destination);
    }
    // An album's own file is the only copy there is: it stays where it is.
    const bool in_place = libutils::is_same_file(srcdir + "/", directory);
    const bool copied =
        in_place ? is_exist(source) && make_way(album, name) : replace_with_copy(source, destination, album, name);
    return copied || copy_failed(destination);
}

}  // namespace

bool makealbumwithrotate(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
                         progress_t& copyprogress, progress_t& shrinkprogress, progress_t& htmlprogress,
                         progress_t& zoomprogress) {
    return names_an_album(album) && step_done(copyfiles(srcdir, files, album, copyprogress), "copyfiles") &&
           step_done(shrink(album, files, shrinkprogress), "shrink") &&
           step_done(makehtml(album, htmlprogress), "makehtml") &&
           step_done(makehtmlzoom(album, zoomprogress), "makehtmlzoom");
}

bool copyfiles(const std::string& srcdir, const std::vector<files_t>& files, const std::string& album,
               progress_t& progress) {
    libutils::mkdir(entry_path(album, layout::original).c_str());
    if (std::any_of(files.begin(), files.end(), [](const files_t& file) { return is_movie(file.filename); })) {
        libutils::mkdir(entry_path(album, layout::movie).c_str());
    }
    for (size_t i = 0; i < files.size(); ++i) {
        talolib::trace(std::cout, files[i].filename);
        if (!copy_file(srcdir, files[i].filename, album)) {
            return false;
        }
        emit_progress(progress, i, files.size());
    }
    return true;
}

bool hardlinkone(const std::string& from, const std::string& to) {
    if (is_exist(to)) {
        unlink(to.c_str());
    }
    const std::string command = "ln " + from + " " + to;
    if (std::system(command.c_str()) != 0) {
        libutils::report(command, ": hard link failed.");
        return false;
    }
    return true;
}

bool hardlink(const std::string& album, const std::string& name) {
    return hardlinkone(original_path(album, name), entry_path(entry_path(album, level_name(0)), name));
}

}  // namespace taloram
