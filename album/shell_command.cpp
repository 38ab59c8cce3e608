#include "album/shell_command.h"

#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

#include "album/album_layout.h"
#include "libutils/files/path.h"

namespace taloram {

namespace {

constexpr const char* safari = "/Applications/Safari.app";
constexpr const char* viewer_script = "talovue3.mac";

// Exit statuses by which a shell tells that it could not start a command (POSIX.1-2017, XCU 2.8.2).
constexpr int status_not_executable = 126;
constexpr int status_not_found = 127;

int exit_status(int status) {
    return status != -1 && WIFEXITED(status) ? WEXITSTATUS(status) : EXIT_FAILURE;
}

int run_in_shell(const std::string& command) {
    return exit_status(std::system(command.c_str()));
}

// Runs a program with its arguments, found along PATH unless it is a path, and waits for its end.
int run_program(std::vector<std::string> words) {
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    pid_t child = 0;
    const int failure = posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ);
    if (failure != 0) {
        return failure == ENOENT ? status_not_found : status_not_executable;
    }
    int status = 0;
    while (waitpid(child, &status, 0) == -1) {
        if (errno != EINTR) {
            return EXIT_FAILURE;
        }
    }
    return exit_status(status);
}

// The same path, spelled so that no program takes it for an option.
std::string as_argument(const std::string& path) {
    return path.starts_with('-') ? "./" + path : path;
}

// A link counts by itself, wherever it leads.
bool is_present(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0;
}

bool is_name(const std::string& name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos;
}

}  // namespace

bool is_shell_word(const std::string& path) {
    constexpr std::string_view literal = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_./+,:@%=-";
    return !path.empty() && path.front() != '-' && path.find_first_not_of(literal) == std::string::npos;
}

bool open_in_safari(const std::string& page) {
    const std::string application = safari;
    const int status = is_shell_word(page) ? run_in_shell("open -a " + application + " " + page)
                                           : run_program({"open", "-a", application, as_argument(page)});
    return status == EXIT_SUCCESS;
}

rename_result_t rename_entry(const std::string& directory, const std::string& old_name, const std::string& new_name) {
    const std::string from = entry_path(directory, old_name);
    const std::string to = entry_path(directory, new_name);
    if (!is_name(new_name) || is_present(to)) {
        return rename_result_t::refused;
    }
    if (!is_name(old_name)) {
        return rename_result_t::failed;
    }
    const int status = is_shell_word(from) && is_shell_word(to) ? run_in_shell("mv " + from + " " + to)
                                                                : std::rename(from.c_str(), to.c_str());
    return status == EXIT_SUCCESS ? rename_result_t::done : rename_result_t::failed;
}

bool remove_tree(const std::string& path) {
    const std::string tree = libutils::strip_trailing_slash(path);
    const std::string name = tree.substr(tree.rfind('/') + 1);
    if (!is_name(name) || libutils::is_same_file(tree, "/")) {
        return false;
    }
    if (is_shell_word(tree)) {
        run_in_shell("rm -rf " + tree);
    } else {
        std::error_code failure;
        std::filesystem::remove_all(tree, failure);
    }
    return !is_present(tree);
}

bool run_viewer(const std::string& program_directory, const std::string& images) {
    const std::string script = program_directory + viewer_script;
    if (!program_directory.empty() && !is_exist(script)) {
        return false;
    }
    const int status = is_shell_word(script) && is_shell_word(images) ? run_in_shell(script + " \"" + images + "\"")
                                                                      : run_program({script, as_argument(images)});
    return status != status_not_found && status != status_not_executable;
}

}  // namespace taloram
