#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string_view>

#include "libutils/diagnostics.h"
#include "tests/support/restrictions.h"

// Becomes another program that has to do without what the options name.
int main(int argc, char** argv) {
    constexpr int status_skipped = 77;
    int i = 1;
    for (; i < argc && argv[i][0] == '-'; ++i) {
        const std::string_view option = argv[i];
        const bool is_unnamed = option == "--no-unnamed-files";
        if (!is_unnamed && option != "--no-free-space-query") {
            break;
        }
        if (!(is_unnamed ? test_support::forbid_unnamed_files() : test_support::forbid_free_space_query())) {
            libutils::report("this system has no filters for system calls");
            return status_skipped;
        }
    }
    if (i == argc || argv[i][0] == '-') {
        libutils::report("usage: restricted [--no-unnamed-files] [--no-free-space-query] <program> [<argument>...]");
        return 2;
    }
    execvp(argv[i], argv + i);
    libutils::report(argv[i], ": ", std::strerror(errno));
    return 1;
}
