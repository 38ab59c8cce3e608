#include "libutils/process/memory.h"
#include "programs/program.h"
#include "tools/command_line.h"
#include "tools/commands.h"

namespace {

int run(int argc, char** argv) {
    libutils::keep_freed_memory();
    int status = programs::status_done;
    const auto command = talomake::parse_command_line(argc, argv, status);
    return command ? talomake::run_command(argc > 0 ? argv[0] : "", *command) : status;
}

}  // namespace

int main(int argc, char** argv) {
    return programs::run_program("talomake", argc, argv, run);
}
