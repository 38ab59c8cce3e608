#include "settings/settings_file.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <list>
#include <sstream>
#include <string_view>

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

bool parse_within(uint64_t& number, const std::string& value, uint64_t most) {
    char* end = nullptr;
    const uint64_t parsed = parse_number(value.c_str(), &end);
    if (end == value.c_str() || parsed > most) {
        return false;
    }
    number = parsed;
    return true;
}

template <std::string global_t::*Text>
bool read_text(const std::string& value) {
    g_global.*Text = value;
    return true;
}

template <std::string global_t::*Text>
std::string write_text() {
    return libutils::on_one_line(g_global.*Text);
}

// A path that counts for this run only does not reach the file.
template <std::string global_t::*Path, std::optional<std::string> stored_paths_t::*Stored>
std::string write_path() {
    return libutils::on_one_line((g_stored_paths.*Stored).value_or(g_global.*Path));
}

template <uint64_t global_t::*Number, uint64_t Most>
bool read_number(const std::string& value) {
    return parse_within(g_global.*Number, value, Most);
}

template <uint64_t global_t::*Number>
std::string write_number() {
    return libutils::join_text(g_global.*Number);
}

std::string write_shrink_size() {
    return libutils::join_text(g_global.shrink_width, ",", g_global.shrink_height);
}

// The lines of the file, in their order.
struct setting_t {
    std::string_view key;
    bool (*read)(const std::string& value);  // false for a value that can't be used; the one from before stands
    std::string (*write)();
};

constexpr uint64_t best_quality = 100;
constexpr uint64_t most_items = 1000;  // wider than any screen; 0 acts as 1

constexpr setting_t settings[] = {
    {"from", read_text<&global_t::from>, write_path<&global_t::from, &stored_paths_t::from>},
    {"album", read_text<&global_t::album>, write_path<&global_t::album, &stored_paths_t::album>},
    {"shrink_size", parse_shrink_size, write_shrink_size},
    {"jpeg_compress", read_number<&global_t::jpeg_compress, best_quality>, write_number<&global_t::jpeg_compress>},
    {"horizontal_items", read_number<&global_t::horizontal_items, most_items>,
     write_number<&global_t::horizontal_items>},
    {"html_header", read_text<&global_t::html_header>, write_text<&global_t::html_header>},
    {"html_address", read_text<&global_t::html_address>, write_text<&global_t::html_address>},
};

constexpr std::string_view former_key = "shrink_level";  // of earlier settings files

// False for a value that can't be used.
bool apply_setting(const std::string& key, const std::string& value) {
    const auto* const found =
        std::find_if(std::begin(settings), std::end(settings), [&](const setting_t& row) { return row.key == key; });
    if (found != std::end(settings)) {
        return found->read(value);
    }
    if (key != former_key) {
        libutils::report("Unrecognized name: ", key);
    }
    return true;
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
    for (const setting_t& row : settings) {
        writeiniline(out, row.key.data(), row.write());
    }
    libutils::new_file_t file(path, libutils::staging_t::beside);
    file.open_as_old();
    file.write(out.str());
    return file.commit_to_disk();
}

}  // namespace taloram
