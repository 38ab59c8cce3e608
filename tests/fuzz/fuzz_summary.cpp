#include <sys/mman.h>
#include <unistd.h>

#include <sstream>

#include "shooting_data/exif_summary.h"
#include "talolib/option.h"
#include "tests/fuzz/fuzz_target.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const fuzz::silence_t silence;
    talolib::g_option[talolib::option_trace] = 1;
    // A file without a disk.
    const int file = memfd_create("photo", MFD_CLOEXEC);
    fuzz::require(file >= 0 && write(file, data, size) == static_cast<ssize_t>(size));
    for (const bool html : {false, true}) {
        std::ostringstream summary;
        const bool written = taloram::writeexif(summary, "/proc/self", "fd", std::to_string(file), html);
        fuzz::require(summary.good() && written == !summary.str().empty());
    }
    close(file);
    return 0;
}
