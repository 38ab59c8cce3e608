#include "programs/arguments.h"

#include <CLI/CLI.hpp>
#include <string_view>
#include <utility>

#include "programs/program.h"

namespace programs {

namespace {

bool means_more_to_the_parser(const std::string& argument) {
    return !argument.empty() && std::string_view("[{+").find(argument.front()) != std::string_view::npos;
}

// A blank after it keeps it whole until plain() takes it off.
std::string marked(std::string argument) {
    if (means_more_to_the_parser(argument)) {
        argument += ' ';
    }
    return argument;
}

}  // namespace

bool parse_arguments(CLI::App& app, int argc, const char* const* argv, const char* unknown, int& status) {
    std::vector<std::string> backwards;  // as the parser wants them
    for (int i = argc - 1; i > 0; --i) {
        backwards.push_back(marked(argv[i]));
    }
    try {
        app.parse(std::move(backwards));
        return true;
    } catch (const CLI::Success& request) {
        status = app.exit(request);
    } catch (const CLI::Error& error) {
        const std::vector<std::string> left = app.remaining();
        const std::string problem = left.empty() ? error.what() : left.front() + unknown;
        report_wrong_use(app.get_name().c_str(), problem);
        status = status_wrong_use;
    }
    return false;
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

}  // namespace programs
