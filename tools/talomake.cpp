#include <csignal>
#include <exception>
#include <iostream>

#include "libutils/memory.h"
#include "libutils/program.h"
#include "tools/command_line.h"
#include "tools/commands.h"
#include "tools/wrong_use.h"

namespace {

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
    libutils::hold_standard_descriptors();
    libutils::keep_freed_memory();
    int status = run(argc, argv);
    if (!std::cout.flush() && status == talomake::status_done) {
        libutils::report("talomake: can't write to standard output.");
        status = talomake::status_failed;
    }
    return status;
}
