#include "album/held_files.h"

#include <sys/stat.h>

#include "album/album_layout.h"
#include "album/book_files.h"
#include "album/equal_files.h"

namespace taloram {

bool find_held_files(const std::string& srcdir, const std::vector<std::string>& names, const std::string& book,
                     const held_file_t& found) {
    std::vector<book_file_t> files;
    const bool is_whole = list_book_files(files, book);
    equal_files_t contents([&files](size_t number) { return files[number].path(); });
    for (const book_file_t& file : files) {
        contents.add(file.length);
    }
    for (size_t i = 0; i < names.size(); ++i) {
        const std::string path = entry_path(srcdir, names[i]);
        struct stat status {};
        if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
            continue;
        }
        const std::vector<size_t> alike = contents.like(path, static_cast<uint64_t>(status.st_size));
        if (!alike.empty()) {
            found(i, files[alike.front()].album);
        }
    }
    return is_whole;
}

}  // namespace taloram
