#include "album/book_files.h"

#include <sys/stat.h>

#include <list>

#include "album/album_layout.h"
#include "album/album_walk.h"
#include "album/engine_step.h"

namespace taloram {

namespace {

bool add_files_of_kind(std::vector<book_file_t>& files, const std::string& album, const char* kind) {
    const std::string directory = entry_path(album, kind);
    std::list<std::string> names;
    if (!list_if_there(names, directory)) {
        return false;
    }
    for (const std::string& name : names) {
        struct stat status {};
        if (lstat(entry_path(directory, name).c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0) {
            files.push_back({album, kind, name, static_cast<uint64_t>(status.st_size)});
        }
    }
    return true;
}

}  // namespace

std::string book_file_t::path_in_album() const {
    return entry_path(kind, name);
}

std::string book_file_t::path() const {
    return entry_path(album, path_in_album());
}

bool list_book_files(std::vector<book_file_t>& files, const std::string& book) {
    files.clear();
    const auto add_album = [&files](const std::string& album) {
        bool good = true;
        for (const char* kind : {layout::original, layout::movie, layout::text}) {
            good = add_files_of_kind(files, album, kind) && good;
        }
        return good;
    };
    return visit_albums(book, {add_album, [](const std::string& /*book*/) { return true; }}).succeeded;
}

}  // namespace taloram
