#include "tools/look_command.h"

#include <algorithm>
#include <iostream>

#include "libutils/files/path.h"
#include "libutils/files/system_path.h"
#include "programs/program_path.h"
#include "settings/looks.h"
#include "settings/settings.h"
#include "settings/settings_file.h"
#include "tools/commands.h"
#include "tools/wrong_use.h"

namespace talomake {

using namespace taloram;

namespace {

using looks_t = std::vector<look_t>;

// A name with a "/" is the path of a look's file.
bool find_look(look_t& look, const looks_t& looks, const std::string& name) {
    if (name.find('/') != std::string::npos) {
        const std::error_code failure = load_look(look, name);
        return !failure || wrong_use(name, ": ", failure.message());
    }
    const auto found = std::find_if(looks.begin(), looks.end(), [&name](const look_t& l) { return l.name == name; });
    if (found == looks.end()) {
        return wrong_use(name, ": no such look; talomake look lists them.");
    }
    look = *found;
    return true;
}

bool is_known(const looks_t& looks, const std::string& line) {
    return line == global_t().html_header ||
           std::any_of(looks.begin(), looks.end(), [&line](const look_t& look) { return look.line == line; });
}

void list_looks(const looks_t& looks) {
    size_t width = 0;
    for (const look_t& look : looks) {
        width = std::max(width, look.name.size());
    }
    for (const look_t& look : looks) {
        std::cout << (look.line == g_global.html_header ? "* " : "  ") << look.name
                  << std::string(width + 2 - look.name.size(), ' ') << libutils::printable(look.description) << '\n';
    }
}

int set_look(const look_t& look, const looks_t& looks, const std::string& path) {
    const std::string before = g_global.html_header;
    g_global.html_header = look.line;
    if (const std::error_code failure = save_settings(path)) {
        libutils::report(path, ": can't be written, ", failure.message());
        return programs::status_failed;
    }
    std::cout << path << ": html_header is the look " << look.name
              << " now. Pages that are there follow with talomake update.\n";
    if (!is_known(looks, before) && before != look.line) {
        std::cout << "It was: " << before << '\n';
    }
    return programs::status_done;
}

}  // namespace

int run_look(const char* program, const look_command_t& command) {
    const looks_t looks = installed_looks(libutils::directory_part(programs::program_path(program, program_name)));
    look_t look;
    if (command.name && !find_look(look, looks, *command.name)) {
        return programs::status_wrong_use;
    }
    if (command.name && !command.set) {
        std::cout << look.line << '\n';
        return programs::status_done;
    }
    const std::string path = inifile("", program_name);
    const std::error_code failure = load_settings(path);
    if (command.set && failure && (path.empty() || !libutils::is_absent(failure))) {
        libutils::report(path.empty() ? "HOME is not set" : path, ": can't be read, ", failure.message());
        return programs::status_failed;
    }
    if (command.set) {
        return set_look(look, looks, path);
    }
    list_looks(looks);
    return programs::status_done;
}

}  // namespace talomake
