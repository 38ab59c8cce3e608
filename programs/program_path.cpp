#include "programs/program_path.h"

#include <sys/auxv.h>

#include <filesystem>
#include <system_error>

#include "libutils/files/path.h"
#include "libutils/files/system_path.h"

namespace programs {

namespace {

// "" when the system doesn't tell.
std::string executable_path() {
    std::error_code failure;
    std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", failure);
    if (failure) {  // /proc need not be mounted
        const unsigned long started = getauxval(AT_EXECFN);
        path = started == 0 ? "" : std::filesystem::canonical(reinterpret_cast<const char*>(started), failure);
    }
    return path.string();
}

}  // namespace

std::string program_path(const std::string& argv0, const std::string& name) {
    const std::string catalogue = name + ".msg";
    // Without a directory it was found along PATH; the current directory, which "" stands for, is another one.
    if (const std::string directory = libutils::directory_part(argv0);
        !directory.empty() && libutils::is_exist(directory + catalogue)) {
        return argv0;
    }
    const std::string own_directory = libutils::directory_part(executable_path());
    const bool is_found = !own_directory.empty() && libutils::is_exist(own_directory + catalogue);
    return is_found ? own_directory + libutils::last_component(argv0) : argv0;
}

}  // namespace programs
