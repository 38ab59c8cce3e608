#include "album/card/card_albums.h"

#include <algorithm>
#include <iterator>
#include <list>
#include <string_view>

#include "album/album_layout.h"
#include "album/day_name.h"
#include "album/import/name_check.h"
#include "album/sums/checksum.h"
#include "libutils/files/directory.h"
#include "libutils/files/path.h"
#include "libutils/text/text.h"

namespace taloram {

namespace {

// Albums of one day, or of one name, are tried up to this number. So many files of one name are no camera's.
constexpr unsigned highest_number = 9999;

constexpr const char* comment_extension = ".txt";

// The photograph that a text is the comment of, "" when it is none's.
std::string commented_photo(const std::string& name) {
    const std::string photo = libutils::extcasecmp(name, comment_extension) == 0
                                  ? name.substr(0, name.size() - std::string_view(comment_extension).size())
                                  : "";
    return is_photo(photo) ? photo : "";
}

std::string stored_place(const std::string& name) {
    return entry_path(directory_of_kind(name), stored_name(name));
}

std::wstring folded_place(const std::string& name) {
    return folded_name(stored_place(name));
}

// Something else than an album may have the name.
bool can_be_album(const std::string& path) {
    return is_album(path) || !is_exist(path) || (libutils::is_directory(path) && !is_book(path));
}

}  // namespace

std::string stored_name(const std::string& name) {
    constexpr const char* written[] = {layout::head_text, layout::last_text, layout::count_text};
    const bool is_written = std::any_of(std::begin(written), std::end(written),
                                        [&](const char* text) { return libutils::equals_nocase(name, text); });
    return (is_written ? "card-" : "") + name;
}

const manifest_t& noted_sums_t::of(const std::string& album) {
    const auto [found, is_new] = manifests_.try_emplace(album);
    if (is_new) {
        static_cast<void>(found->second.load(album));
    }
    return found->second;
}

card_albums_t::names_t& card_albums_t::taken_names(const std::string& album) {
    const auto [found, is_new] = taken_.try_emplace(album);
    if (is_new) {
        for (const char* kind : {layout::original, layout::movie, layout::text}) {
            std::list<std::string> names;
            // The import looks again, and refuses what it can't list.
            static_cast<void>(libutils::list_files(names, entry_path(album, kind)));
            for (const std::string& name : names) {
                found->second.insert(folded_name(entry_path(kind, name)));
            }
        }
    }
    return found->second;
}

// A photograph must not get the comment of another one of its name.
bool card_albums_t::would_mix_comments(const std::string& album, const card_file_t& file) {
    const names_t& taken = taken_names(album);
    const std::string photo = commented_photo(file.name);
    return (!photo.empty() && taken.count(folded_place(photo)) != 0) ||
           (is_photo(file.name) && taken.count(folded_place(file.name + comment_extension)) != 0);
}

// A name that has a sum is that of a file that may come back, unless it is this one.
bool card_albums_t::is_free(const std::string& album, const card_file_t& file) {
    if (!can_be_album(album) || taken_names(album).count(folded_place(file.name)) != 0) {
        return false;
    }
    const std::optional<std::string> noted = sums_.of(album).sum_of(stored_place(file.name));
    if (noted) {
        std::string sum;
        return !sha256_of_file(sum, file.path(), read_from_t::anywhere) && sum == *noted;
    }
    return !would_mix_comments(album, file);
}

card_albums_t::place_t card_albums_t::settled(const std::string& album, const card_file_t& file) {
    taken_names(album).insert(folded_place(file.name));
    settle(file, album);
    return {album, {}, ""};
}

card_albums_t::place_t card_albums_t::place(const card_file_t& file) {
    const auto photo = album_of_.find(entry_path(file.directory, commented_photo(file.name)));
    if (photo != album_of_.end() && taken_names(photo->second).count(folded_place(file.name)) == 0) {
        return settled(photo->second, file);
    }
    std::optional<day_t> day;
    if (!name_) {
        day = is_photo(file.name) ? day_taken(file.path()) : std::nullopt;
        day = day ? day : local_day(file.changed);
        if (!day) {
            return {"", {}, "its day can't be told"};
        }
    }
    const std::string first = entry_path(book_, name_ ? *name_ : day_name(*day));
    std::string album = first;
    for (unsigned number = 2; !is_free(album, file); ++number) {
        if (number > highest_number) {
            return {"", {}, "every album of its day has another file of its name"};
        }
        album = first + "-" + std::to_string(number);
    }
    place_t place = settled(album, file);
    if (day) {
        place.title = day_title(*day);
    }
    return place;
}

}  // namespace taloram
