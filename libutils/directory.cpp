#include "libutils/directory.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cerrno>
#include <memory>
#include <string_view>

#include "libutils/path.h"

namespace libutils {

namespace {

constexpr unsigned directory_bit = 4;

bool has_directory_type(const std::string& dir, const dirent& entry) {
    unsigned type = entry.d_type;
    if (type == DT_UNKNOWN) {
        struct stat status {};
        if (lstat((dir + "/" + entry.d_name).c_str(), &status) != 0) {
            return false;
        }
        type = IFTODT(status.st_mode);
    }
    return (type & directory_bit) != 0;
}

bool list_entries(std::list<std::string>& out, const char* dir, bool directories) {
    out.clear();
    const std::string path = *dir == '\0' ? "." : dir;
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(opendir(path.c_str()), closedir);
    if (stream == nullptr) {
        return false;
    }
    while (const dirent* entry = readdir(stream.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != ".." && has_directory_type(path, *entry) == directories) {
            out.emplace_back(name);
        }
    }
    out.sort();
    return true;
}

}  // namespace

bool getfiles(std::list<std::string>& out, const char* dir) {
    return list_entries(out, dir, false);
}

bool getdirs(std::list<std::string>& out, const char* dir) {
    return list_entries(out, dir, true);
}

bool mkdir(const char* path) {
    return ::mkdir(path, 0755) == 0 || (errno == EEXIST && is_directory(path));
}

}  // namespace libutils
