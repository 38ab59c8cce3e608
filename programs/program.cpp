#include "programs/program.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <exception>
#include <iostream>

namespace programs {

namespace {

int run_guarded(const char* name, int argc, char** argv, int (*run)(int, char**)) {
    try {
        return run(argc, argv);
    } catch (const std::exception& failure) {
        libutils::report(name, ": ", failure.what());
    } catch (...) {
        libutils::report(name, ": unknown failure.");
    }
    return status_failed;
}

}  // namespace

int run_program(const char* name, int argc, char** argv, int (*run)(int, char**)) {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    hold_standard_descriptors();
    const int status = run_guarded(name, argc, argv, run);
    if (!std::cout.flush() && status == status_done) {
        libutils::report(name, ": can't write to standard output.");
        return status_failed;
    }
    return status;
}

void hold_standard_descriptors() {
    int descriptor = 0;
    do {
        descriptor = open("/dev/null", O_RDONLY);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0) {
        close(descriptor);
    }
}

}  // namespace programs
