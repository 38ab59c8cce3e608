#include "app/command_line.h"

#include <iostream>

namespace taloram {

command_line_t parse_command_line(int argc, const char* const* argv) {
    command_line_t line;
    if (argc >= 2 && argc <= 3 && std::string(argv[1]) == "--card") {
        line.card = argc == 3 ? argv[2] : "";
        return line;
    }
    line.has_paths = argc == 3 && std::string(argv[1]) != "-h";
    line.wants_usage = argc >= 2 && !line.has_paths;
    if (line.has_paths) {
        line.from = argv[1];
        line.album = argv[2];
    }
    return line;
}

void usage(const char* argv0) {
    std::cout << "usage: " << argv0 << " [-h] [<from dir> <to dir>]" << std::endl;
}

}  // namespace taloram
