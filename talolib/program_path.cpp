#include "talolib/program_path.h"

#include <filesystem>
#include <system_error>

#include "libutils/path.h"

namespace talolib {

std::string program_path(const std::string& argv0, const std::string& name) {
    const std::string catalogue = name + ".msg";
    // Without a directory it was found along PATH; the current directory, which "" stands for, is another one.
    if (const std::string directory = libutils::dirname(argv0);
        !directory.empty() && libutils::is_exist(directory + catalogue)) {
        return argv0;
    }
    std::error_code failure;
    const std::string executable = std::filesystem::read_symlink("/proc/self/exe", failure).string();
    const std::string own_directory = libutils::dirname(executable);
    const bool is_found = !own_directory.empty() && libutils::is_exist(own_directory + catalogue);
    return is_found ? own_directory + libutils::filename(argv0) : argv0;
}

}  // namespace talolib
