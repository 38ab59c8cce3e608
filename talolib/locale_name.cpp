#include "talolib/locale_name.h"

#include <cstdlib>

namespace talolib {

std::string get_locale_name() {
    const char* name = std::getenv("LANG");
    return name == nullptr ? "" : name;
}

}  // namespace talolib
