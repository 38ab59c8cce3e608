#include "libutils/files/system_path.h"

#include <filesystem>
#include <system_error>

#include "libutils/files/path.h"

namespace libutils {

namespace {

bool ends_with_dots(const std::string& path) {
    const std::string last = last_component(path);
    return last == "." || last == "..";
}

}  // namespace

std::string last_component(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

std::string directory_part(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

std::string directory_of_file(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash);
}

std::string parent_directory(const std::string& path) {
    if (ends_with_dots(path)) {
        return path + "/..";
    }
    return strip_trailing_slash(directory_part(path));
}

std::string directory_name(const std::string& path) {
    if (ends_with_dots(path)) {
        std::error_code error;
        const std::filesystem::path real = std::filesystem::canonical(path, error);
        if (!error && real.has_filename()) {
            return real.filename();
        }
    }
    return last_component(path);
}

std::string real_directory(const std::string& path) {
    std::error_code failure;
    const std::string real = std::filesystem::canonical(path.empty() ? "." : path, failure).string();
    return failure ? "" : real + (real.ends_with('/') ? "" : "/");
}

}  // namespace libutils
