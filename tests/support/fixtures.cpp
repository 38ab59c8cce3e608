#include "tests/support/fixtures.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

// Present in sanitized programs only: a report must reach the terminal, not the file that catches a stream.
extern "C" __attribute__((weak)) void __sanitizer_set_report_fd(void* fd);

namespace test_support {
namespace {

namespace fs = std::filesystem;

// GoogleTest's capture catches C and C++ streams; it must end with the action, whichever way that goes.
std::string output_of(void (*start)(), std::string (*stop)(), const std::function<void()>& action) {
    static const intptr_t terminal = ::dup(STDERR_FILENO);
    if (__sanitizer_set_report_fd != nullptr) {
        __sanitizer_set_report_fd(reinterpret_cast<void*>(terminal));
    }
    start();
    try {
        action();
    } catch (...) {
        static_cast<void>(stop());
        throw;
    }
    return stop();
}

struct grouping_t : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

}  // namespace

temp_dir_t::temp_dir_t() : path_((fs::temp_directory_path() / "taloram-XXXXXX").string()) {
    if (::mkdtemp(path_.data()) == nullptr) {
        throw std::runtime_error(path_ + ": can't make a temporary directory");
    }
}

temp_dir_t::~temp_dir_t() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::string stderr_of(const std::function<void()>& action) {
    return output_of(testing::internal::CaptureStderr, testing::internal::GetCapturedStderr, action);
}

std::string stdout_of(const std::function<void()>& action) {
    return output_of(testing::internal::CaptureStdout, testing::internal::GetCapturedStdout, action);
}

std::string real_photos() {
    const char* const named = std::getenv("TALORAM_PHOTOS");
    const fs::path path = named != nullptr ? fs::path(named) : fs::path(TALORAM_SOURCE_DIR "/../shared/photos");
    return fs::is_directory(path) ? path.lexically_normal().string() : "";
}

std::vector<std::string> files_below(const std::string& directory) {
    std::vector<std::string> files;
    std::error_code unreadable;
    for (const auto& entry : fs::recursive_directory_iterator(directory, unreadable)) {
        if (entry.is_regular_file()) {
            files.push_back(entry.path().string());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

file_size_limit_t::file_size_limit_t(rlim_t size) {
    std::signal(SIGXFSZ, SIG_IGN);  // writes fail instead
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{size, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
}

file_size_limit_t::~file_size_limit_t() {
    setrlimit(RLIMIT_FSIZE, &before_);
}

grouping_locale_t::grouping_locale_t() : c_locale_before_(std::setlocale(LC_ALL, nullptr)) {
    std::locale::global(std::locale(before_, new grouping_t));
}

grouping_locale_t::~grouping_locale_t() {
    std::locale::global(before_);
    std::setlocale(LC_ALL, c_locale_before_.c_str());
}

}  // namespace test_support
