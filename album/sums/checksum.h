#pragma once

#include <string>
#include <system_error>

#include "libutils/process/goes_on.h"

namespace taloram {

enum class read_from_t {
    anywhere,
    disk,  // what the system still keeps of the file in memory is dropped before
};

// `sum` = the SHA-256 (FIPS 180-4) of a regular file in lower-case hexadecimal, as sha256sum(1) writes it. The file is
// read in blocks to its end; operation_canceled when it was not to go on. No message.
[[nodiscard]] std::error_code sha256_of_file(std::string& sum, const std::string& path, read_from_t from,
                                             const libutils::goes_on_t& asked = {});

}  // namespace taloram
