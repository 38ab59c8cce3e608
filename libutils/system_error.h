#pragma once

#include <system_error>

namespace libutils {

// What errno says about the system call that just failed.
[[nodiscard]] std::error_code last_error();

// True when a path leads to nothing: another thing than what is there and can't be read.
[[nodiscard]] bool is_absent(const std::error_code& failure);

// Why the program itself refuses a file.
enum class refusal_t {
    not_a_file = 1,  // a device, pipe or socket
    leads_out,       // a symbolic link that leads out of the album or book
};

[[nodiscard]] std::error_code make_error_code(refusal_t refusal);

}  // namespace libutils

template <>
struct std::is_error_code_enum<libutils::refusal_t> : std::true_type {};
