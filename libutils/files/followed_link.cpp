#include "libutils/files/followed_link.h"

#include <limits.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <memory>

#include "libutils/files/system_path.h"

namespace libutils {

namespace {

constexpr int most_links = 40;  // as many as the system follows

std::error_code resolve(std::string& real, const std::string& path) {
    const std::unique_ptr<char, void (*)(void*)> resolved(realpath(path.empty() ? "." : path.c_str(), nullptr),
                                                          std::free);
    if (resolved == nullptr) {
        return last_error();
    }
    real = resolved.get();
    return {};
}

// What the link `path` holds; no failure and "" when it is none, or nothing.
std::error_code read_link(std::string& target, const std::string& path) {
    std::array<char, PATH_MAX> text{};
    const ssize_t length = readlink(path.c_str(), text.data(), text.size());
    target = length < 0 ? "" : std::string(text.data(), static_cast<size_t>(length));
    const std::error_code failure = length < 0 ? last_error() : std::error_code();
    return failure == std::errc::invalid_argument || failure == std::errc::no_such_file_or_directory ? std::error_code()
                                                                                                     : failure;
}

bool is_below(const std::string& path, const std::string& directory) {
    return path.starts_with(directory.ends_with('/') ? directory : directory + "/");
}

// `path`, whose directory has to exist, without links.
std::error_code resolve_name(std::string& path) {
    for (int links = 0; links < most_links; ++links) {
        const std::string name = last_component(path);
        if (name.empty() || name == "." || name == "..") {
            return resolve(path, path);
        }
        std::string directory;
        std::string target;
        if (const std::error_code failure = resolve(directory, directory_part(path))) {
            return failure;
        }
        path = (directory == "/" ? "" : directory) + "/" + name;
        if (const std::error_code failure = read_link(target, path)) {
            return failure;
        }
        if (target.empty()) {
            return {};
        }
        path = target.front() == '/' ? target : directory + "/" + target;
    }
    return make_error_code(std::errc::too_many_symbolic_link_levels);
}

std::error_code leads_out(const std::string& target, const std::string& path, const std::string& root) {
    for (const std::string& directory : {root, directory_part(path)}) {
        std::string real;
        if (const std::error_code failure = resolve(real, directory)) {
            return failure;
        }
        if (is_below(target, real)) {
            return {};
        }
    }
    return make_error_code(refusal_t::leads_out);
}

}  // namespace

std::error_code follow_link(std::string& path, const links_t& links) {
    std::string link;
    std::error_code failure = read_link(link, path);
    if (failure || link.empty()) {
        return failure;
    }
    std::string target = path;
    failure = resolve_name(target);
    if (!failure && links.others != links_t::others_t::followed) {
        failure = leads_out(target, path, links.root);
    }
    if (failure) {
        return links.others == links_t::others_t::replaced ? std::error_code() : failure;
    }
    path = target;
    return {};
}

}  // namespace libutils
