#pragma once

#include <string>
#include <system_error>

#include "libutils/process/goes_on.h"

namespace libutils {

// Copies the whole of `from` over `to` through a mapping and gives it the times of `from`, as copy_date() does. `to`
// was written and closed without a failure then; network file systems and quotas refuse bytes as late as that. No
// message. operation_canceled when it was not to go on; what `to` holds then is of no use.
[[nodiscard]] std::error_code copy_file(const std::string& from, const std::string& to, const goes_on_t& asked = {});

// Gives `to` the access and modification times of `from` in whole seconds. No message.
[[nodiscard]] std::error_code copy_date(const std::string& from, const std::string& to);

// Copies the whole of `from` over `to` through a mapping and one write and gives it the times of `from`. False, without
// a message of its own, when `from` can't be read or `to` can't be opened; otherwise the result of copydate(): a
// short write alone does not make it false. A file copied onto itself stays untouched.
[[nodiscard]] bool filecopy(const char* from, const char* to);

// The same through a buffer of 4096 bytes; reports what it can't open.
[[nodiscard]] bool filecopy1(const char* from, const char* to);

// Gives `to` the access and modification times of `from` in whole seconds; reports a failure.
[[nodiscard]] bool copydate(const char* from, const char* to);

// True when both files can be read and hold the same bytes; false also when it was not to go on.
[[nodiscard]] bool same_contents(const char* a, const char* b, const goes_on_t& asked = {});

}  // namespace libutils
