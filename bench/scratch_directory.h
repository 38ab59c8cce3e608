#pragma once

#include <stdlib.h>

#include <filesystem>
#include <string>

#include "tests/support/photo_maker.h"

namespace bench {

// A fresh directory that goes, with all it holds, when the object goes. Its path is "" when it could not be made.
class scratch_directory_t {
  public:
    scratch_directory_t() {
        std::string path = std::filesystem::temp_directory_path() / "taloram-bench-XXXXXX";
        if (mkdtemp(path.data()) != nullptr) {
            path_ = path;
        }
    }
    ~scratch_directory_t() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    scratch_directory_t(const scratch_directory_t&) = delete;
    scratch_directory_t& operator=(const scratch_directory_t&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

  private:
    std::string path_;
};

}  // namespace bench
