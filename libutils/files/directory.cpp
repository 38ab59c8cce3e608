#include "libutils/files/directory.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <string_view>

#include "libutils/files/path.h"

namespace libutils {

namespace {

enum class kind_t {
    file,
    directory,
    temporary,
    none,
};

constexpr unsigned directory_bit = 4;

std::error_code kind_of(kind_t& kind, const std::string& dir, const dirent& entry) {
    unsigned type = entry.d_type;
    if (type == DT_UNKNOWN) {
        struct stat status {};
        if (lstat((dir + "/" + entry.d_name).c_str(), &status) == 0) {
            type = IFTODT(status.st_mode);
        } else if (errno != ENOENT) {  // gone meanwhile
            return last_error();
        }
    }
    const std::string_view name = entry.d_name;
    if ((type & directory_bit) != 0) {
        kind = name == "." || name == ".." ? kind_t::none : kind_t::directory;
    } else {
        kind = is_temporary(entry.d_name) ? kind_t::temporary : kind_t::file;
    }
    return {};
}

std::error_code list_entries(std::list<std::string>& out, const std::string& dir, kind_t wanted) {
    out.clear();
    const std::string path = dir.empty() ? "." : dir;
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(opendir(path.c_str()), closedir);
    if (stream == nullptr) {
        return last_error();
    }
    std::list<std::string> names;
    // readdir(3) returns the same at the end and on an error.
    errno = 0;
    while (const dirent* entry = readdir(stream.get())) {
        kind_t kind{};
        if (const std::error_code failure = kind_of(kind, path, *entry)) {
            return failure;
        }
        if (kind == wanted) {
            names.emplace_back(entry->d_name);
        }
        errno = 0;
    }
    if (errno != 0) {
        return last_error();
    }
    names.sort();
    out = std::move(names);
    return {};
}

bool is_number(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

}  // namespace

std::error_code list_files(std::list<std::string>& out, const std::string& dir) {
    return list_entries(out, dir, kind_t::file);
}

std::error_code list_directories(std::list<std::string>& out, const std::string& dir) {
    return list_entries(out, dir, kind_t::directory);
}

std::error_code list_temporaries(std::list<std::string>& out, const std::string& dir) {
    return list_entries(out, dir, kind_t::temporary);
}

bool getfiles(std::list<std::string>& out, const char* dir) {
    return !list_files(out, dir);
}

bool getdirs(std::list<std::string>& out, const char* dir) {
    return !list_directories(out, dir);
}

bool is_temporary(const std::string& name) {
    const std::string_view prefix = temporary_prefix;
    if (!name.starts_with(prefix)) {
        return false;
    }
    const std::string_view rest = std::string_view(name).substr(prefix.size());
    const size_t dash = rest.find('-');
    return dash != std::string_view::npos && is_number(rest.substr(0, dash)) && dash + 1 < rest.size();
}

bool mkdir(const char* path) {
    return ::mkdir(path, 0755) == 0 || (errno == EEXIST && is_directory(path));
}

}  // namespace libutils
