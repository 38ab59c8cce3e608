#include "libutils/program.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace libutils {

namespace {

bool means_more_to_the_parser(const std::string& argument) {
    return !argument.empty() && std::string_view("[{+").find(argument.front()) != std::string_view::npos;
}

// A blank behind it keeps it whole until plain() takes it off.
std::string guarded(std::string argument) {
    if (means_more_to_the_parser(argument)) {
        argument += ' ';
    }
    return argument;
}

}  // namespace

void hold_standard_descriptors() {
    int descriptor = 0;
    do {
        descriptor = open("/dev/null", O_RDONLY);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0) {
        close(descriptor);
    }
}

std::vector<std::string> guarded_arguments(int argc, const char* const* argv) {
    std::vector<std::string> backwards;
    for (int i = argc - 1; i > 0; --i) {
        backwards.push_back(guarded(argv[i]));
    }
    return backwards;
}

std::string plain(std::string argument) {
    if (means_more_to_the_parser(argument)) {
        argument.pop_back();
    }
    return argument;
}

std::vector<std::string> plain(std::vector<std::string> arguments) {
    for (std::string& argument : arguments) {
        argument = plain(std::move(argument));
    }
    return arguments;
}

std::string one_line(std::string text) {
    const auto is_control = [](char c) { return (c >= '\0' && c < ' ') || c == '\x7f'; };
    std::replace_if(text.begin(), text.end(), is_control, '?');
    return text;
}

}  // namespace libutils
