#pragma once

#include <string>

#include "libutils/files/system_path.h"

namespace talovue {

// What is shown at one place of the list: a file, or a photograph of an album in the size that suits.
struct picture_t {
    std::string path;     // of the file; of an album's photograph the original's, which may be missing
    std::string album{};  // "" for a file that stands for itself

    [[nodiscard]] std::string name() const { return libutils::last_component(path); }

    friend bool operator==(const picture_t&, const picture_t&) = default;
};

}  // namespace talovue
