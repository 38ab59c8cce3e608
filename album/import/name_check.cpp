#include "album/import/name_check.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <clocale>
#include <cwchar>
#include <cwctype>
#include <list>
#include <map>
#include <set>

#include "libutils/diagnostics.h"
#include "libutils/files/directory.h"
#include "libutils/files/path.h"
#include "libutils/files/system_path.h"
#include "libutils/system_error.h"
#include "libutils/text/text.h"

namespace taloram {

namespace {

using names_t = std::set<std::string>;

// Names are UTF-8 wherever a file system folds them, whatever the user's locale is.
class utf8_characters_t {
  public:
    utf8_characters_t() : locale_(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {
        if (locale_ != nullptr) {
            outer_ = uselocale(locale_);
        }
    }
    ~utf8_characters_t() {
        if (locale_ != nullptr) {
            uselocale(outer_);
            freelocale(locale_);
        }
    }
    utf8_characters_t(const utf8_characters_t&) = delete;
    utf8_characters_t& operator=(const utf8_characters_t&) = delete;

  private:
    locale_t locale_;
    locale_t outer_ = nullptr;
};

// In small letters; bytes that are no character stand for themselves.
std::wstring folded(const std::string& name) {
    std::wstring result;
    std::mbstate_t state{};
    for (size_t at = 0; at < name.size();) {
        wchar_t character = 0;
        const size_t length = std::mbrtowc(&character, &name[at], name.size() - at, &state);
        if (length == 0 || length > name.size()) {
            result += static_cast<wchar_t>(static_cast<unsigned char>(name[at++]));
            state = {};
        } else {
            result += static_cast<wchar_t>(std::towlower(static_cast<wint_t>(character)));
            at += length;
        }
    }
    return result;
}

// Whether a disk takes two names for one, tried on a new file of `directory`.
bool is_one_name(const std::string& directory, const std::string& a, const std::string& b) {
    constexpr size_t longest_name = 200;  // bytes; with what comes in front within the usual 255
    const std::string hidden = entry_path(directory, libutils::temporary_prefix + std::to_string(getpid()) + "-");
    const bool is_short = std::max(a.size(), b.size()) <= longest_name;
    const std::string made = hidden + (is_short ? a : "a");
    const int descriptor = open(made.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        return false;  // nothing can be written there, the import neither
    }
    close(descriptor);
    const bool is_one = is_exist(hidden + (is_short ? b : "A"));
    unlink(made.c_str());
    return is_one;
}

// Where the files of a directory come to lie, or the nearest directory above that is there: what is made in it is like
// it.
std::string existing_directory(std::string path) {
    while (!path.empty() && path != "/" && !libutils::is_directory(path)) {
        path = libutils::parent_directory(path);
    }
    return path;
}

bool is_one_file(const std::string& path, const std::string& other) {
    struct stat a {};
    struct stat b {};
    return lstat(path.c_str(), &a) == 0 && lstat(other.c_str(), &b) == 0 && a.st_dev == b.st_dev &&
           a.st_ino == b.st_ino;
}

// The names in one directory of an album.
struct directory_names_t {
    const char* kind;
    names_t present;
    names_t listed;   // for import
    names_t written;  // by the program itself

    [[nodiscard]] bool is_clash(const std::string& album, const std::string& a, const std::string& b) const {
        const bool has_a = present.count(a) != 0;
        const bool has_b = present.count(b) != 0;
        const bool is_listed = listed.count(a) != 0 || listed.count(b) != 0;
        if (!is_listed || (has_a && has_b)) {
            return false;
        }
        const std::string directory = entry_path(album, kind);
        return has_a || has_b ? is_one_file(entry_path(directory, a), entry_path(directory, b))
                              : is_one_name(existing_directory(directory), a, b);
    }
};

void add_clashes(std::vector<clash_t>& clashes, const std::string& album, const directory_names_t& directory) {
    std::map<std::wstring, names_t> by_letters;
    for (const names_t* names : {&directory.present, &directory.listed, &directory.written}) {
        for (const std::string& name : *names) {
            by_letters[folded(name)].insert(name);
        }
    }
    for (const auto& [letters, names] : by_letters) {
        for (auto a = names.begin(); a != names.end(); ++a) {
            for (auto b = std::next(a); b != names.end(); ++b) {
                if (directory.is_clash(album, *a, *b)) {
                    clashes.emplace_back(entry_path(directory.kind, *a), entry_path(directory.kind, *b));
                }
            }
        }
    }
}

// What in a name keeps a link from leading to the file, "" when nothing does. Pages write names as they are.
std::string misleading_part(const std::string& name) {
    const auto is_hex = [&](size_t at) {
        return at < name.size() && std::isxdigit(static_cast<unsigned char>(name[at])) != 0;
    };
    for (size_t at = 0; at < name.size(); ++at) {
        const char c = name[at];
        const char next = at + 1 < name.size() ? name[at + 1] : ' ';
        const bool is_escape = c == '%' && is_hex(at + 1) && is_hex(at + 2);
        const bool is_entity = c == '&' && (next == '#' || std::isalpha(static_cast<unsigned char>(next)) != 0);
        if (c == '\n' || c == '\r') {
            return "a line end";
        }
        if (std::string("#?\"<>").find(c) != std::string::npos || is_escape || is_entity) {
            return std::string("\"") + c + "\"";
        }
    }
    return "";
}

void warn_of_links(const std::string& path, const std::string& name) {
    const std::string part = misleading_part(name);
    if (!part.empty()) {
        libutils::report(libutils::printable(path), ": links to it lead nowhere, because its name has ", part,
                         "; rename it before the import.");
    }
}

void warn_of_shared_pages(const std::vector<files_t>& files, const std::string& album) {
    std::list<std::string> names;
    // An album without originals shares nothing.
    static_cast<void>(libutils::list_files(names, entry_path(album, layout::original)));
    names_t listed;
    for (const files_t& file : files) {
        listed.insert(file.filename);
        names.push_back(file.filename);
    }
    std::map<std::string, names_t> by_page;
    for (const std::string& name : names) {
        if (is_photo(name)) {
            by_page[zoom_page_name(name, 1)].insert(name);
        }
    }
    for (const auto& [page, photos] : by_page) {
        if (photos.size() < 2 || std::none_of(photos.begin(), photos.end(),
                                              [&](const std::string& name) { return listed.count(name) != 0; })) {
            continue;
        }
        std::string shared;
        for (const std::string& photo : photos) {
            shared += (shared.empty() ? "" : ", ") + libutils::printable(photo);
        }
        libutils::report(shared, ": share their zoom pages, as ", layout::html, "/", libutils::printable(page),
                         "; rename one before the import.");
    }
}

}  // namespace

std::error_code find_clashes(std::vector<clash_t>& clashes, const std::vector<files_t>& files,
                             const std::string& album) {
    const utf8_characters_t characters;
    for (const char* kind : {layout::original, layout::movie, layout::text}) {
        directory_names_t directory{kind, {}, {}, {}};
        for (const files_t& file : files) {
            if (directory_of_kind(file.filename) == std::string(kind)) {
                directory.listed.insert(file.filename);
            }
        }
        if (directory.listed.empty()) {
            continue;
        }
        std::list<std::string> listing;
        const std::error_code failure = libutils::list_files(listing, entry_path(album, kind));
        if (failure && !libutils::is_absent(failure)) {
            libutils::report(entry_path(album, kind), ": can't be listed, ", failure.message());
            return failure;
        }
        directory.present = {listing.begin(), listing.end()};
        if (kind == std::string(layout::text)) {
            directory.written = {layout::head_text, layout::last_text};
        }
        add_clashes(clashes, album, directory);
    }
    return {};
}

std::wstring folded_name(const std::string& name) {
    const utf8_characters_t characters;
    return folded(name);
}

void warn_of_names(const std::vector<files_t>& files, const std::string& album) {
    warn_of_links(album, libutils::directory_name(album));
    for (const files_t& file : files) {
        if (is_photo(file.filename) || is_movie(file.filename)) {
            warn_of_links(file.filename, file.filename);
        }
    }
    warn_of_shared_pages(files, album);
}

}  // namespace taloram
