#include "settings/settings_file.h"

#include <cstdlib>
#include <list>
#include <sstream>

#include "libutils/diagnostics.h"
#include "libutils/files/new_file.h"
#include "libutils/files/path.h"
#include "libutils/files/read_file.h"
#include "libutils/text/text.h"
#include "settings/settings.h"

namespace taloram {

namespace {

// Numbers are read with base 0: "0x" means hexadecimal and a leading "0" octal.
uint64_t parse_number(const char* text, char** end = nullptr) {
    return std::strtoul(text, end, 0);
}

// Width, one character of any kind, height. Without a second number the height keeps its value.
bool parse_shrink_size(const std::string& value) {
    char* end = nullptr;
    const uint64_t width = parse_number(value.c_str(), &end);
    const bool has_height = end[0] != '\0' && end[1] != '\0';
    const uint64_t height = has_height ? parse_number(end + 1) : g_global.shrink_height;
    if (width == 0 || height == 0) {
        return false;
    }
    g_global.shrink_width = width;
    g_global.shrink_height = height;
    return true;
}

bool parse_within(uint64_t& number, const std::string& value, uint64_t least, uint64_t most) {
    char* end = nullptr;
    const uint64_t parsed = parse_number(value.c_str(), &end);
    if (end == value.c_str() || parsed < least || parsed > most) {
        return false;
    }
    number = parsed;
    return true;
}

// False for a value that can't be used; the one from before stands.
bool apply_setting(const std::string& key, const std::string& value) {
    constexpr uint64_t best_quality = 100;
    constexpr uint64_t most_items = 1000;  // wider than any screen; 0 acts as 1
    if (key == "from") {
        g_global.from = value;
    } else if (key == "album") {
        g_global.album = value;
    } else if (key == "html_header") {
        g_global.html_header = value;
    } else if (key == "html_address") {
        g_global.html_address = value;
    } else if (key == "shrink_size") {
        return parse_shrink_size(value);
    } else if (key == "jpeg_compress") {
        return parse_within(g_global.jpeg_compress, value, 0, best_quality);
    } else if (key == "horizontal_items") {
        return parse_within(g_global.horizontal_items, value, 0, most_items);
    } else if (key != "shrink_level") {  // of earlier settings files
        libutils::report("Unrecognized name: ", key);
    }
    return true;
}

void write_text(std::ostream& out, const char* key, const std::string& value) {
    writeiniline(out, key, libutils::on_one_line(value));
}

}  // namespace

std::string inifile(const char* /*dir*/, const char* name) {
    const char* home = std::getenv("HOME");
    return home == nullptr ? "" : std::string(home) + "/." + libutils::basename(std::string(name));
}

bool loadini(const char* dir, const char* name) {
    const std::string path = inifile(dir, name);
    const std::error_code failure = load_settings(path);
    if (path.empty() || libutils::is_absent(failure) || failure == std::errc::permission_denied) {
        return false;
    }
    if (failure) {
        libutils::report(path, ": can't be read, ", failure.message());
    }
    return true;
}

std::error_code load_settings(const std::string& path) {
    constexpr uint64_t longest = uint64_t{16} << 20;  // bytes
    std::string text;
    if (const std::error_code failure = libutils::read_file(text, path, longest)) {
        return failure;
    }
    std::list<std::string> lines;
    libutils::separate_token(lines, text, "\n");
    for (std::string& line : lines) {
        libutils::chop(line);
        std::pair<std::string, std::string> setting;
        if (libutils::separate_first_token(setting, line, '=') && !apply_setting(setting.first, setting.second)) {
            libutils::report(path, ": can't be used: ", line);
        }
    }
    return {};
}

void saveini(const char* dir, const char* name) {
    static_cast<void>(save_settings(inifile(dir, name)));
}

std::error_code save_settings(const std::string& path) {
    std::ostringstream out;
    const libutils::classic_numbers numbers(out);
    write_text(out, "from", g_stored_paths.from.value_or(g_global.from));
    write_text(out, "album", g_stored_paths.album.value_or(g_global.album));
    writeiniline(out, "shrink_size", libutils::join_text(g_global.shrink_width, ",", g_global.shrink_height));
    writeiniline(out, "jpeg_compress", g_global.jpeg_compress);
    writeiniline(out, "horizontal_items", g_global.horizontal_items);
    write_text(out, "html_header", g_global.html_header);
    write_text(out, "html_address", g_global.html_address);
    libutils::new_file_t file(path, libutils::staging_t::beside);
    file.open_as_old();
    file.write(out.str());
    return file.commit_to_disk();
}

}  // namespace taloram
