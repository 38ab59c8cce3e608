#include "libutils/memory.h"

#include <malloc.h>
#include <fstream>
#include <limits>
#include <locale>
#include <string>

namespace libutils {

uint64_t available_memory() {
    // proc(5): lines of a name, a number and "kB".
    std::ifstream table;
    table.imbue(std::locale::classic());
    table.open("/proc/meminfo");
    uint64_t kilobytes = 0;
    bool told = false;
    std::string name;
    for (uint64_t number = 0; table >> name >> number;
         table.ignore(std::numeric_limits<std::streamsize>::max(), '\n')) {
        if (name == "MemAvailable:" || name == "SwapFree:") {
            kilobytes += number;
            told = true;
        }
    }
    return told ? kilobytes * 1024 : std::numeric_limits<uint64_t>::max();
}

void keep_freed_memory() {
#ifdef __GLIBC__
    constexpr int kept = 256 << 20;  // bytes
    mallopt(M_MMAP_THRESHOLD, kept);
    mallopt(M_TRIM_THRESHOLD, kept);
#endif
}

}  // namespace libutils
