#pragma once

#include <string>

namespace talolib {

// The value of the environment variable LANG, "" when it is unset.
[[nodiscard]] std::string get_locale_name();

}  // namespace talolib
