#include "album/engine_step.h"

#include <iostream>

#include "libutils/files/directory.h"
#include "talolib/option.h"

namespace taloram {

bool list_if_there(std::list<std::string>& files, const std::string& directory) {
    const std::error_code failure = libutils::list_files(files, directory);
    if (libutils::is_absent(failure)) {
        talolib::trace(std::cerr, directory, ": getfiles failed.");
        return true;
    }
    if (failure) {
        libutils::report(directory, ": getfiles failed, ", failure.message());
    }
    return !failure;
}

}  // namespace taloram
