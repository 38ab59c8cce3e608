#pragma once

#include <sys/resource.h>

#include <functional>
#include <locale>
#include <string>
#include <vector>

// What tests of every room share.
namespace test_support {

// A fresh directory that is removed with all it holds.
class temp_dir_t {
  public:
    temp_dir_t();
    ~temp_dir_t();
    temp_dir_t(const temp_dir_t&) = delete;
    temp_dir_t& operator=(const temp_dir_t&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] std::string operator/(const std::string& name) const { return path_ + "/" + name; }

  private:
    std::string path_;
};

// What `action` writes to standard error (C++ and C streams alike) or standard output.
[[nodiscard]] std::string stderr_of(const std::function<void()>& action);
[[nodiscard]] std::string stdout_of(const std::function<void()>& action);

// The real photographs: the environment's TALORAM_PHOTOS, else ../shared/photos beside the checkout; "" when absent.
[[nodiscard]] std::string real_photos();

// Every regular file below `directory`, sorted; the paths begin with `directory`. Empty when it can't be read.
[[nodiscard]] std::vector<std::string> files_below(const std::string& directory);

// No file becomes larger than `size` bytes while it lives: what is beyond fails, as on a full disk.
class file_size_limit_t {
  public:
    explicit file_size_limit_t(rlim_t size);
    ~file_size_limit_t();
    file_size_limit_t(const file_size_limit_t&) = delete;
    file_size_limit_t& operator=(const file_size_limit_t&) = delete;

  private:
    rlimit before_{};
};

// Sets the global C++ locale to a form that groups digits and writes decimal commas while it lives.
class grouping_locale_t {
  public:
    grouping_locale_t();
    ~grouping_locale_t();
    grouping_locale_t(const grouping_locale_t&) = delete;
    grouping_locale_t& operator=(const grouping_locale_t&) = delete;

  private:
    std::locale before_;
    std::string c_locale_before_;
};

}  // namespace test_support
