#include "album/import/card_source.h"

#include <algorithm>
#include <list>

#include "album/album_layout.h"
#include "libutils/files/directory.h"

namespace taloram {

namespace {

bool holds_pictures(const std::string& directory) {
    std::list<std::string> names;
    return !libutils::list_files(names, directory) &&
           std::any_of(names.begin(), names.end(),
                       [](const std::string& name) { return is_photo(name) || is_movie(name); });
}

}  // namespace

std::string card_source(const std::string& card) {
    for (const char* name : {"DCIM", "dcim"}) {
        const std::string pictures = entry_path(card, name);
        std::list<std::string> folders;
        if (libutils::list_directories(folders, pictures)) {
            continue;
        }
        const auto last = std::find_if(folders.rbegin(), folders.rend(), [&](const std::string& folder) {
            return holds_pictures(entry_path(pictures, folder));
        });
        return last == folders.rend() ? pictures : entry_path(pictures, *last);
    }
    return card;
}

}  // namespace taloram
