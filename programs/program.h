#pragma once

#include <string>

#include "libutils/diagnostics.h"
#include "libutils/text/text.h"

// What the three programs share.
namespace programs {

// What a program ends with.
enum status_t : int {
    status_done = 0,
    status_failed = 1,     // something failed; standard error tells what
    status_wrong_use = 2,  // one line on standard error, nothing touched
};

// Runs a program: `run` gets the command line and returns the status. Before it standard streams that the caller closed
// are held, a closed pipe and a file that grew too large become failed writes, not the end in the middle of an import;
// what `run` throws is reported under the program's `name`, and so is output that could not be written.
[[nodiscard]] int run_program(const char* name, int argc, char** argv, int (*run)(int, char**));

// A standard stream that the caller closed would lend its number to the next file that is opened, and messages would
// then be written into a page or a photograph. Takes such numbers, read-only, so that writing still fails.
void hold_standard_descriptors();

// Reports wrong use of the program `name` as one line.
template <typename... Parts>
void report_wrong_use(const char* name, const Parts&... parts) {
    libutils::report(name, ": ", libutils::printable(libutils::join_text(parts...)));
}

}  // namespace programs
