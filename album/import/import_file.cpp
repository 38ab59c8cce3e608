#include "album/import/import_file.h"

#include <sys/stat.h>

#include "album/album_layout.h"
#include "libutils/files/file_copy.h"
#include "libutils/files/path.h"

namespace taloram {

import_file_t locate_import(const std::string& srcdir, const std::string& name, const std::string& album) {
    const char* const kind = directory_of_kind(name);
    const std::string directory = entry_path(album, kind);
    return {srcdir + "/" + name, entry_path(directory, name), entry_path(kind, name),
            libutils::is_same_file(srcdir + "/", directory)};
}

bool has_same_copy(const import_file_t& file, const libutils::goes_on_t& asked) {
    struct stat status {};
    return lstat(file.destination.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           !libutils::is_same_file(file.source, file.destination) &&
           libutils::same_contents(file.source.c_str(), file.destination.c_str(), asked);
}

}  // namespace taloram
