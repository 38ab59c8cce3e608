#include "talolib/message.h"

#include <sys/stat.h>

#include <algorithm>
#include <clocale>
#include <fstream>
#include <iostream>

#include "libutils/diagnostics.h"
#include "libutils/path.h"
#include "talolib/locale_name.h"
#include "talolib/option.h"

namespace talolib {

namespace {

constexpr const char* installed_catalogues = "/usr/site/share/talolib/";

std::vector<char> g_catalogue;
std::vector<const char*> g_messages;  // point into g_catalogue

// Tries the three places of one catalogue file. `path` is left as the place that was tried last.
bool load_from_any_place(std::string& path, const std::string& dir, const std::string& filename) {
    path = filename;
    if (load_message(g_catalogue, path.c_str())) {
        return true;
    }
    if (dir.empty()) {
        trace(std::cout, dir, ": dirpath.");
        path = libutils::searchpath(filename, nullptr);
    } else {
        path = dir + filename;
    }
    if (load_message(g_catalogue, path.c_str())) {
        return true;
    }
    trace(std::cout, path, ": warning can't load message file.");
    path = installed_catalogues + filename;
    return load_message(g_catalogue, path.c_str());
}

bool names_utf8(const std::string& locale) {
    return locale.ends_with(".UTF-8") || locale.ends_with(".utf8");
}

}  // namespace

std::string init_message(const char* dir, const char* name) {
    const std::string locale = get_locale_name();
    // A locale that the system doesn't have would leave ASCII, with "?" for most of what is typed.
    if (std::setlocale(LC_ALL, "") == nullptr && names_utf8(locale)) {
        std::setlocale(LC_CTYPE, "C.UTF-8");
    }
    const std::string filename = std::string(name) + (locale.empty() ? "" : "." + locale) + ".msg";
    trace(std::cerr, "init_message() entering.");

    g_messages.clear();
    std::string path;
    bool loaded = load_from_any_place(path, dir, filename);
    if (!loaded) {
        trace(std::cerr, path, ": can't load message file.");
        loaded = load_from_any_place(path, dir, std::string(name) + ".msg");
    }
    if (!loaded) {
        libutils::report(path, ": can't load message file.");
        return "";
    }
    trace(std::cerr, "path: ", path);
    make_message_table(g_messages, g_catalogue, count_lines(g_catalogue));
    trace(std::cerr, "init_message() leaving.");
    return path;
}

const char* getmsg(e_message_t id) {
    return id < g_messages.size() ? g_messages[id] : "message not loaded.";
}

std::string make_title(const char* a, const char* b) {
    return std::string(a) + " - " + b;
}

void make_title2(std::string& title, const char* a, const char* b) {
    title = make_title(a, b);
}

bool load_message(std::vector<char>& buffer, const char* path) {
    struct stat status {};
    if (stat(path, &status) != 0 || !S_ISREG(status.st_mode)) {
        return false;
    }
    buffer.assign(static_cast<size_t>(status.st_size), '\0');
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        return false;
    }
    in.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
    buffer.resize(static_cast<size_t>(in.gcount()));
    return true;
}

size_t count_lines(const std::vector<char>& buffer) {
    return static_cast<size_t>(std::count(buffer.begin(), buffer.end(), '\n'));
}

void make_message_table(std::vector<const char*>& table, std::vector<char>& buffer, size_t lines) {
    // What a walk that ends early leaves: an empty text, never a null pointer.
    table.assign(lines, "");
    auto at = buffer.begin();
    for (size_t i = 0; i < lines && at != buffer.end(); ++i) {
        const auto line = at;
        at = std::find_if(at, buffer.end(), [](char c) { return c == '\r' || c == '\n'; });
        if (at == buffer.end()) {
            return;
        }
        table[i] = &*line;
        if (*at == '\r') {
            *at++ = '\0';
        }
        if (at != buffer.end() && *at == '\n') {
            *at++ = '\0';
        }
    }
}

}  // namespace talolib
