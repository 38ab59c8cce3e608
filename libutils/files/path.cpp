#include "libutils/files/path.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <list>
#include <string_view>

#include "libutils/text/text.h"

namespace libutils {

namespace {

// Behind the last separator of `path`, 0 without one.
size_t name_start(std::string_view path) {
    size_t start = 0;
    for_each_character(path, [&](size_t at, size_t length) {
        if (length == 1 && (path[at] == '/' || path[at] == '\\')) {
            start = at + 1;
        }
    });
    return start;
}

// Where the character `wanted` stands last in `text`, npos without one.
size_t last_character(std::string_view text, char wanted) {
    size_t found = std::string_view::npos;
    for_each_character(text, [&](size_t at, size_t length) {
        if (length == 1 && text[at] == wanted) {
            found = at;
        }
    });
    return found;
}

size_t first_character(std::string_view text, char wanted) {
    size_t found = std::string_view::npos;
    for_each_character(text, [&](size_t at, size_t length) {
        if (found == std::string_view::npos && length == 1 && text[at] == wanted) {
            found = at;
        }
    });
    return found;
}

// The longest start of `text` that fits into `bytes` and ends with a whole character.
std::string_view cut(std::string_view text, size_t bytes) {
    size_t end = 0;
    for_each_character(text, [&](size_t at, size_t length) {
        if (at + length <= bytes) {
            end = at + length;
        }
    });
    return text.substr(0, end);
}

size_t store(char* dst, std::string_view text, size_t n) {
    const std::string_view part = cut(text, n);
    std::copy(part.begin(), part.end(), dst);
    if (part.size() < n) {
        dst[part.size()] = '\0';
    }
    return part.size();
}

void store_part(char* dst, std::string_view text) {
    const size_t written = store(dst, text, splitpath_t::part_size - 1);
    dst[written] = '\0';
}

}  // namespace

std::string basename(const std::string& path) {
    const std::string name = filename(path);
    return name.substr(0, last_character(name, '.'));
}

std::string dirname(const std::string& path) {
    return path.substr(0, name_start(path));
}

std::string filename(const std::string& path) {
    return path.substr(name_start(path));
}

std::string strip_trailing_slash(std::string path) {
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

int extcasecmp(const std::string& name, const char* ext) {
    const size_t length = std::strlen(ext);
    if (length > name.size()) {
        return -1;
    }
    const auto folded = [](char c) { return static_cast<unsigned char>(lower(c)); };
    const size_t start = name.size() - length;
    for (size_t i = 0; i < length; ++i) {
        if (const int difference = folded(name[start + i]) - folded(ext[i]); difference != 0) {
            return difference;
        }
    }
    return 0;
}

std::string searchpath(const std::string& name, const char* program) {
    if (is_exist(name)) {
        return name;
    }
    std::list<std::string> directories;
    if (const char* path = std::getenv("PATH")) {
        separate_token(directories, path, ":");
    }
    directories.emplace_front("./");
    if (program != nullptr) {
        splitpath_t parts;
        split(parts, program);
        directories.push_back(std::string(parts.drive) + parts.directory);
    }
    for (const std::string& directory : directories) {
        const std::string candidate = directory + "/" + name;
        if (is_exist(candidate)) {
            return candidate;
        }
    }
    return name;
}

bool is_exist(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0;
}

bool is_directory(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool is_same_file(const std::string& a, const std::string& b) {
    struct stat status_a {};
    struct stat status_b {};
    return stat(a.c_str(), &status_a) == 0 && stat(b.c_str(), &status_b) == 0 && status_a.st_dev == status_b.st_dev &&
           status_a.st_ino == status_b.st_ino;
}

void splitpath(const char* path, char* drive, char* dir, char* name, char* ext) {
    std::string_view rest(path);
    const size_t colon = first_character(rest, ':');
    const size_t drive_length = colon == std::string_view::npos ? 0 : colon + 1;
    store_part(drive, rest.substr(0, drive_length));
    rest.remove_prefix(drive_length);

    const size_t start = name_start(rest);
    store_part(dir, rest.substr(0, start));
    rest.remove_prefix(start);

    const size_t dot = std::min(last_character(rest, '.'), rest.size());
    store_part(name, rest.substr(0, dot));
    store_part(ext, rest.substr(dot));
}

void split(splitpath_t& parts, const char* path) {
    splitpath(path, parts.drive, parts.directory, parts.filename, parts.extension);
}

void concatpath(char* dst, const char* drive, const char* dir, const char* name, const char* ext) {
    for (const char* part : {drive, dir, name, ext}) {
        dst = stpcpy(dst, part);
    }
}

void concat(char* dst, const splitpath_t& parts) {
    concatpath(dst, parts.drive, parts.directory, parts.filename, parts.extension);
}

const char* baseptr(const char* path) {
    return path + name_start(path);
}

size_t basename(char* dst, const char* src, size_t n) {
    return store(dst, basename(std::string(src)), n);
}

size_t dirname(char* dst, const char* src, size_t n) {
    return store(dst, dirname(std::string(src)), n);
}

std::string delimconvert(const std::string& path) {
    return wstr2str(str2wstr(path));
}

std::string deliminvert(const std::string& path) {
    return wstr2str(str2wstr(path));
}

}  // namespace libutils
