#include "tools/check_arguments.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <list>
#include <map>
#include <set>

#include "album/texts/comment_store.h"
#include "libutils/files/directory.h"
#include "libutils/files/path.h"
#include "libutils/files/system_path.h"
#include "tools/wrong_use.h"

namespace talomake {

namespace {

constexpr size_t longest_text = size_t{16} << 20;  // bytes; a text of a page, or something else taken for one

bool is_file(const std::string& path) {
    return libutils::is_exist(path) && !libutils::is_directory(path);
}

bool check_from(const std::string& from, std::list<std::string>& listing) {
    if (!libutils::is_directory(from)) {
        return wrong_use(from, ": no such directory.");
    }
    return libutils::getfiles(listing, from.c_str()) || wrong_use(from, ": can't be read.");
}

// An album in place of a book would take over the book's page and hide its albums.
bool check_no_book(const std::string& directory) {
    std::list<std::string> below;
    if (taloram::is_album(directory)) {
        return true;
    }
    if (libutils::list_directories(below, directory)) {
        return wrong_use(directory, ": can't be read.");
    }
    const bool holds_albums = std::any_of(below.begin(), below.end(), [&](const std::string& name) {
        return taloram::is_album(taloram::entry_path(directory, name));
    });
    return !holds_albums || wrong_use(directory, ": a book; name a directory below it for the album.");
}

bool check_place(const std::string& album) {
    if (album.empty()) {
        return wrong_use("the album directory has no name.");
    }
    if (libutils::is_directory(album)) {
        return check_no_book(album);
    }
    if (libutils::is_exist(album)) {
        return wrong_use(album, ": not a directory.");
    }
    const std::string parent = libutils::parent_directory(album);
    return libutils::is_directory(parent.empty() ? "." : parent) || wrong_use(parent, ": no such directory.");
}

// What an import removes or replaces can't be its source.
bool check_source(const taloram::album_order_t& order) {
    return !taloram::is_unfit_source(order.source, order.album) ||
           wrong_use(order.source, ": inside the album; only its original/ can be imported again.");
}

// A file named on the command line, inside `directory`; `seen` collects the names.
bool check_name(const std::string& directory, const std::string& name, std::set<std::string>& seen) {
    if (!taloram::is_plain_name(name)) {
        return wrong_use("\"", name, "\" is not the name of a file in ", directory, ".");
    }
    const std::string path = taloram::entry_path(directory, name);
    if (!is_file(path)) {
        return wrong_use(path, ": no such file.");
    }
    return seen.insert(name).second || wrong_use(name, ": named twice.");
}

bool choose_files(const std::vector<std::string>& named, const std::list<std::string>& listing,
                  taloram::album_order_t& order) {
    if (named.empty()) {
        for (const std::string& name : listing) {
            // The source's texts go into the album's own, where options may have changed them.
            const bool is_listed = name.front() != '.' && !taloram::becomes_comments(order.source, name);
            // The listing has links to directories.
            if (is_listed && !libutils::is_directory(taloram::entry_path(order.source, name))) {
                order.files.push_back({name, 0});
            }
        }
        return true;
    }
    std::set<std::string> seen;
    for (const std::string& name : named) {
        if (!check_name(order.source, name, seen)) {
            return false;
        }
        order.files.push_back({name, 0});
    }
    return true;
}

bool set_rotations(const std::vector<rotation_t>& rotations, std::vector<taloram::files_t>& files) {
    std::map<std::string, taloram::files_t*> by_name;
    for (taloram::files_t& file : files) {
        by_name[file.filename] = &file;
    }
    for (const rotation_t& rotation : rotations) {
        const auto found = by_name.find(rotation.name);
        if (found == by_name.end()) {
            return wrong_use("--rotate: ", rotation.name, " is not imported.");
        }
        if (!taloram::is_photo(rotation.name)) {
            return wrong_use("--rotate: ", rotation.name, " is not a photograph.");
        }
        if (found->second->rightrotatecount != 0) {
            return wrong_use("--rotate: ", rotation.name, " is named twice.");
        }
        found->second->rightrotatecount = rotation.quarter_turns;
    }
    return true;
}

bool read_text(const std::optional<std::string>& path, std::optional<std::string>& text) {
    if (!path) {
        return true;
    }
    std::ifstream in(*path, std::ios::binary);
    if (!in) {
        return wrong_use(*path, ": can't be read.");
    }
    text.emplace();
    std::array<char, 4096> buffer{};
    do {
        in.read(buffer.data(), buffer.size());
        text->append(buffer.data(), static_cast<size_t>(in.gcount()));
        if (text->size() > longest_text) {
            return wrong_use(*path, ": too long for a text.");
        }
    } while (in);
    return !in.bad() || wrong_use(*path, ": can't be read.");
}

}  // namespace

bool check_album(const album_command_t& command, taloram::album_order_t& order) {
    order.source = libutils::strip_trailing_slash(command.from);
    order.album = libutils::strip_trailing_slash(command.album);
    order.title = command.title;
    order.options = {command.verify, command.keep_going};
    order.replace = command.replace ? taloram::replace_t::files_and_sums : taloram::replace_t::nothing;
    std::list<std::string> listing;
    return check_from(order.source, listing) && check_place(order.album) && check_source(order) &&
           choose_files(command.files, listing, order) && set_rotations(command.rotations, order.files) &&
           read_text(command.head_file, order.head) && read_text(command.last_file, order.last);
}

bool check_directories(const std::vector<std::string>& typed, std::vector<std::string>& directories) {
    for (const std::string& path : typed) {
        directories.push_back(libutils::strip_trailing_slash(path));
        if (!libutils::is_directory(directories.back())) {
            return wrong_use(path, ": no such directory.");
        }
    }
    return true;
}

bool check_books(const std::vector<std::string>& typed, std::vector<std::string>& books) {
    if (!check_directories(typed, books)) {
        return false;
    }
    for (const std::string& book : books) {
        if (taloram::is_album(book)) {
            return wrong_use(book, ": an album, not a book.");
        }
    }
    return true;
}

bool check_turn(const turn_command_t& command, std::string& album) {
    album = libutils::strip_trailing_slash(command.album);
    if (!taloram::is_album(album)) {
        return wrong_use(album, ": no such album.");
    }
    const std::string originals = taloram::entry_path(album, taloram::layout::original);
    std::set<std::string> seen;
    for (const std::string& photo : command.photos) {
        if (!check_name(originals, photo, seen)) {
            return false;
        }
        if (!taloram::is_photo(photo)) {
            return wrong_use(photo, ": not a photograph.");
        }
    }
    return true;
}

bool check_publish(const publish_command_t& command, taloram::publish_order_t& order) {
    order = {libutils::strip_trailing_slash(command.source), libutils::strip_trailing_slash(command.directory),
             command.keep_data, command.prune};
    if (!taloram::is_album(order.source) && !taloram::is_book(order.source)) {
        return wrong_use(command.source, ": no album or book.");
    }
    const std::string reason = taloram::unfit_copy(order);
    return reason.empty() || wrong_use(command.directory, reason);
}

bool check_photos(const std::vector<std::string>& photos) {
    for (const std::string& photo : photos) {
        if (!is_file(photo)) {
            return wrong_use(photo, ": no such file.");
        }
    }
    return true;
}

}  // namespace talomake
