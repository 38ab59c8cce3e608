#include "settings/settings_file.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "libutils/diagnostics.h"
#include "libutils/new_file.h"
#include "libutils/path.h"
#include "libutils/text.h"
#include "settings/settings.h"

namespace taloram {

namespace {

// Numbers are read with base 0: "0x" means hexadecimal and a leading "0" octal.
uint64_t parse_number(const char* text, char** end = nullptr) {
    return std::strtoul(text, end, 0);
}

// Width, one character of any kind, height. Without a second number the height keeps its value.
void parse_shrink_size(const std::string& value) {
    char* end = nullptr;
    g_global.shrink_width = parse_number(value.c_str(), &end);
    if (end[0] != '\0' && end[1] != '\0') {
        g_global.shrink_height = parse_number(end + 1);
    }
}

void apply_setting(const std::string& key, const std::string& value) {
    if (key == "from") {
        g_global.from = value;
    } else if (key == "album") {
        g_global.album = value;
    } else if (key == "html_header") {
        g_global.html_header = value;
    } else if (key == "html_address") {
        g_global.html_address = value;
    } else if (key == "shrink_size") {
        parse_shrink_size(value);
    } else if (key == "jpeg_compress") {
        g_global.jpeg_compress = parse_number(value.c_str());
    } else if (key == "horizontal_items") {
        g_global.horizontal_items = parse_number(value.c_str());
    } else if (key != "shrink_level") {  // of earlier settings files
        libutils::report("Unrecognized name: ", key);
    }
}

}  // namespace

std::string inifile(const char* /*dir*/, const char* name) {
    const char* home = std::getenv("HOME");
    return home == nullptr ? "" : std::string(home) + "/." + libutils::basename(std::string(name));
}

bool loadini(const char* dir, const char* name) {
    std::ifstream in(inifile(dir, name));
    if (!in) {
        return false;
    }
    for (std::string line; std::getline(in, line);) {
        libutils::chop(line);
        std::pair<std::string, std::string> setting;
        if (libutils::separate_first_token(setting, line, '=')) {
            apply_setting(setting.first, setting.second);
        }
    }
    return true;
}

void saveini(const char* dir, const char* name) {
    std::ostringstream out;
    const libutils::classic_numbers numbers(out);
    writeiniline(out, "from", g_global.from);
    writeiniline(out, "album", g_global.album);
    writeiniline(out, "shrink_size", libutils::join_text(g_global.shrink_width, ",", g_global.shrink_height));
    writeiniline(out, "jpeg_compress", g_global.jpeg_compress);
    writeiniline(out, "horizontal_items", g_global.horizontal_items);
    writeiniline(out, "html_header", g_global.html_header);
    writeiniline(out, "html_address", g_global.html_address);
    libutils::new_file_t file(inifile(dir, name), libutils::staging_t::beside);
    file.open_as_old();
    file.write(out.str());
    static_cast<void>(file.commit_to_disk());
}

}  // namespace taloram
