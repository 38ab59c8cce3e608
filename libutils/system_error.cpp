#include "libutils/system_error.h"

#include <cerrno>
#include <string>

namespace libutils {

namespace {

struct refusals_t : std::error_category {
    [[nodiscard]] const char* name() const noexcept override { return "taloram"; }
    [[nodiscard]] std::string message(int value) const override {
        return value == static_cast<int>(refusal_t::not_a_file) ? "not a regular file"
                                                                : "a link that leads out of the directory";
    }
};

}  // namespace

std::error_code last_error() {
    return {errno, std::generic_category()};
}

bool is_absent(const std::error_code& failure) {
    return failure == std::errc::no_such_file_or_directory || failure == std::errc::not_a_directory;
}

std::error_code make_error_code(refusal_t refusal) {
    static const refusals_t refusals;
    return {static_cast<int>(refusal), refusals};
}

}  // namespace libutils
