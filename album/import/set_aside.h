#pragma once

#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace taloram {

// Files that have to go before another file comes, and come back when it does not. Killed between, they are gone: what
// they are called meanwhile is a temporary's name (libutils/files/directory.h), which the next import or update
// removes.
class set_aside_t {
  public:
    // `directory` gets those names, where the files can be renamed to there; else their own directory does.
    explicit set_aside_t(std::string directory) : directory_(std::move(directory)) {}
    ~set_aside_t();  // puts them back
    set_aside_t(const set_aside_t&) = delete;
    set_aside_t& operator=(const set_aside_t&) = delete;

    [[nodiscard]] std::error_code add(const std::string& path);

    // For good. What can't be removed stays a temporary.
    void remove();

  private:
    std::string directory_;
    std::vector<std::pair<std::string, std::string>> files_;  // the path and the name meanwhile
};

}  // namespace taloram
