#pragma once

#include <string>

namespace taloram {

// The operations that are shell commands by design: "open -a ...", "mv", "rm -rf" and the viewer's script. A command
// goes through the shell exactly as it is written here only when every path in it is a word that the shell takes
// literally. Any other path never reaches a shell: the same is done on exactly that path by direct calls. This module
// alone decides between the two; it knows no toolkit.

// True when `path` passes through a shell as one literal word and no command takes it for an option.
[[nodiscard]] bool is_shell_word(const std::string& path);

// "open -a /Applications/Safari.app <page>"; true when it ended with status 0.
[[nodiscard]] bool open_in_safari(const std::string& page);

enum class rename_result_t {
    done,
    refused,  // the new name is empty, holds "/", is "." or "..", or exists; nothing was changed
    failed
};

// "mv <directory>/<old_name> <directory>/<new_name>".
[[nodiscard]] rename_result_t rename_entry(const std::string& directory, const std::string& old_name,
                                           const std::string& new_name);

// "rm -rf <path>": removes that directory with all below it and follows no link. True when it is gone.
[[nodiscard]] bool remove_tree(const std::string& path);

// Runs the viewer's script talovue3.mac of the program directory on a directory of images. False when there is no such
// script, or no viewer beside it.
[[nodiscard]] bool run_viewer(const std::string& program_directory, const std::string& images);

}  // namespace taloram
