#include "talolib/message.h"

#include <langinfo.h>

#include <algorithm>
#include <clocale>
#include <cstring>
#include <iostream>

#include "libutils/diagnostics.h"
#include "libutils/files/path.h"
#include "libutils/files/read_file.h"
#include "libutils/text/text.h"
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

// Names that say nothing of characters mean UTF-8, as pages do.
bool means_utf8(const std::string& locale) {
    const size_t dot = locale.rfind('.');
    const std::string charset = dot == std::string::npos ? "" : locale.substr(dot + 1);
    return charset.empty() ? locale != "ja-JP"
                           : libutils::equals_nocase(charset, "UTF-8") || libutils::equals_nocase(charset, "utf8");
}

// The locale of the environment. "C" and "POSIX", and one that the system doesn't have, would leave ASCII, with "?" for
// most of what is typed.
void set_locale(const std::string& name) {
    std::setlocale(LC_ALL, "");
    if (means_utf8(name) && std::strcmp(nl_langinfo(CODESET), "ANSI_X3.4-1968") == 0) {
        std::setlocale(LC_CTYPE, "C.UTF-8");
    }
}

}  // namespace

std::string init_message(const char* dir, const char* name) {
    const std::string locale = get_locale_name();
    set_locale(locale);
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
    constexpr uint64_t longest = uint64_t{16} << 20;  // bytes
    std::string text;
    if (libutils::read_file(text, path, longest)) {
        return false;
    }
    buffer.assign(text.begin(), text.end());
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
