#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <exception>
#include <iostream>

#include "tools/command_line.h"
#include "tools/commands.h"
#include "tools/wrong_use.h"

namespace {

// A standard stream that the caller closed would lend its number to the next file that is opened, and messages would
// then be written into a page or a photograph. Read-only, so that writing still fails.
void hold_standard_descriptors() {
    int descriptor = 0;
    do {
        descriptor = open("/dev/null", O_RDONLY);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0) {
        close(descriptor);
    }
}

int run(int argc, const char* const* argv) {
    try {
        int status = talomake::status_done;
        const auto command = talomake::parse_command_line(argc, argv, status);
        return command ? talomake::run_command(argc > 0 ? argv[0] : "", *command) : status;
    } catch (const std::exception& failure) {
        libutils::report("talomake: ", failure.what());
    } catch (...) {
        libutils::report("talomake: unknown failure.");
    }
    return talomake::status_failed;
}

}  // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);  // a closed pipe is a failed write, not the end in the middle of an import
    std::signal(SIGXFSZ, SIG_IGN);  // so is a file that grew too large
    hold_standard_descriptors();
    int status = run(argc, argv);
    if (!std::cout.flush() && status == talomake::status_done) {
        libutils::report("talomake: can't write to standard output.");
        status = talomake::status_failed;
    }
    return status;
}
