#include "album/texts/comment_store.h"

#include <sys/stat.h>

#include <algorithm>
#include <iostream>
#include <sstream>

#include "album/album_layout.h"
#include "album/texts/text_file.h"
#include "album/write_lock.h"
#include "libutils/diagnostics.h"
#include "libutils/files/directory.h"
#include "libutils/files/flush.h"
#include "libutils/files/new_file.h"
#include "libutils/files/path.h"
#include "libutils/text/text.h"
#include "talolib/option.h"

namespace taloram {

namespace {

// A text by the start of its path and its two endings: it is written with the first one; cards and other systems may
// have left the second.
struct text_place_t {
    std::string start;
    const char* name;
    const char* upper_case;

    [[nodiscard]] std::string path() const { return start + name; }
};

text_place_t head_in(const std::string& txtdir) {
    return {entry_path(txtdir, ""), layout::head_text, "HEAD.TXT"};
}

text_place_t last_in(const std::string& txtdir) {
    return {entry_path(txtdir, ""), layout::last_text, "LAST.TXT"};
}

text_place_t comment_of(const std::string& album, const std::string& photo) {
    return {text_path(album, libutils::filename(photo)), ".txt", ".TXT"};
}

bool is_unreadable(const std::error_code& failure) {
    return failure && !libutils::is_absent(failure);
}

// Reads a text under the first of its names that is there; `path` is then that one.
std::error_code load(std::string& text, std::string& path, const text_place_t& place) {
    path = place.path();
    const std::error_code failure = load_text(text, path);
    if (!libutils::is_absent(failure)) {
        return failure;
    }
    path = place.start + place.upper_case;
    return load_text(text, path);
}

// Takes the title from the first line; what follows the second one stays in `head`.
void take_title(std::string& title, std::string& head, const std::string& path, const std::string& text) {
    std::istringstream in(text);
    std::string line1;
    std::string line2;
    std::getline(in, line1);
    std::getline(in, line2);
    head = in.good() ? text.substr(static_cast<size_t>(in.tellg())) : "";
    if (line1 != line2) {
        libutils::report(path, ": title different.\n", line1, "\n", line2);
    }
    if (!line1.empty()) {
        libutils::chop(line1);
        title = line1;
    }
}

std::string lines_of(const std::string& text) {
    std::string lines;
    for (std::string& line : split_lines(text)) {
        libutils::chop(line);
        lines += line + "\r\n";
    }
    return lines;
}

// False when there is none or, with `unread` set, when it can't be read.
bool load_if_there(std::string& text, std::string& path, unread_text_t& unread, const text_place_t& place) {
    const std::error_code failure = load(text, path, place);
    if (is_unreadable(failure)) {
        unread = {path, failure};
    }
    return !failure;
}

// Nobody can write the user's words again: those that could not be read were not seen by whoever wants to replace them,
// and a link out of the album may lead to what is somebody else's.
std::error_code open_text(libutils::new_file_t& file, const text_place_t& place, const std::string& album) {
    std::string text;
    std::string path;
    const std::error_code failure = load(text, path, place);
    return is_unreadable(failure) ? failure : file.open_as_old({libutils::links_t::others_t::refused, album});
}

bool save_text(const text_place_t& place, const std::string& album, const std::string& lines) {
    libutils::new_file_t file(place.path(), libutils::staging_t::above);
    if (const std::error_code failure = open_text(file, place, album)) {
        libutils::report(place.path(), ": file open failed, ", failure.message());
        return false;
    }
    file.write(lines);
    if (file.commit_to_disk()) {
        libutils::report(place.path(), ": file write error.");
        return false;
    }
    return true;
}

bool load_strings(const std::string& txtdir, std::string& title, std::string& head, std::string& last) {
    comment_texts_t texts{title, head, last};
    if (const unread_text_t unread = load_comments_in(texts, txtdir)) {
        report_unread(unread);
        return false;
    }
    title = std::move(texts.title);
    head = std::move(texts.head);
    last = std::move(texts.last);
    return true;
}

}  // namespace

void report_unread(const unread_text_t& unread) {
    libutils::report(unread.path, ": comment text load failed, ", unread.reason.message());
}

unread_text_t load_comments(comment_texts_t& texts, const std::string& album) {
    return load_comments_in(texts, entry_path(album, layout::text));
}

unread_text_t load_comments_in(comment_texts_t& texts, const std::string& txtdir) {
    unread_text_t unread;
    comment_texts_t found = texts;
    std::string text;
    std::string path;
    if (load_if_there(text, path, unread, head_in(txtdir))) {
        take_title(found.title, found.head, path, text);
    } else if (!unread) {
        talolib::trace(std::cerr, txtdir, ": ", layout::head_text, " not found.");
    }
    if (!unread && !load_if_there(found.last, path, unread, last_in(txtdir)) && !unread) {
        talolib::trace(std::cerr, txtdir, ": ", layout::last_text, " not found.");
    }
    if (!unread) {
        texts = std::move(found);
    }
    return unread;
}

bool becomes_comments(const std::string& txtdir, const std::string& name) {
    const text_place_t places[] = {head_in(txtdir), last_in(txtdir)};
    return std::any_of(std::begin(places), std::end(places), [&](const text_place_t& place) {
        const std::string read = is_exist(place.path()) ? place.path() : place.start + place.upper_case;
        return name == place.name ||
               (libutils::equals_nocase(name, place.name) && libutils::is_same_file(entry_path(txtdir, name), read));
    });
}

unread_text_t load_photo_comment(std::optional<std::string>& text, const std::string& album, const std::string& photo) {
    const text_place_t place = comment_of(album, photo);
    std::string found;
    std::string path;
    const std::error_code failure = load(found, path, place);
    text.reset();
    if (!failure) {
        text = std::move(found);
    } else if (is_unreadable(failure)) {
        return {path, failure};
    } else {
        talolib::trace(std::cerr, place.path(), ": comment text open failed, ", failure.message());
    }
    return {};
}

bool loadcommenttxt(const std::string& album, std::string& title, std::string& head, std::string& last) {
    const std::string txtdir = entry_path(album, layout::text);
    struct stat status {};
    if (stat(txtdir.c_str(), &status) != 0) {
        const std::error_code failure = libutils::last_error();
        if (is_unreadable(failure)) {
            report_unread({txtdir, failure});
        } else {
            talolib::trace(std::cout, txtdir, ": stat failed, ", failure.message());
        }
        return false;
    }
    return load_strings(txtdir, title, head, last);
}

void loadcomment(const std::string& txtdir, std::string& title, std::string& head, std::string& last) {
    static_cast<void>(load_strings(txtdir, title, head, last));
}

bool savecommenttxt(const std::string& album, const std::string& title, const std::string& head,
                    const std::string& last) {
    write_lock_t lock;
    if (!lock_album(lock, album)) {
        return false;
    }
    const std::string txtdir = entry_path(album, layout::text);
    if (!is_exist(txtdir)) {
        libutils::mkdir(txtdir.c_str());
        static_cast<void>(libutils::flush(entry_path(album, ".")));
    }
    const std::string title_line = libutils::on_one_line(title) + "\r\n";
    return save_text(head_in(txtdir), album, title_line + title_line + lines_of(head)) &&
           save_text(last_in(txtdir), album, lines_of(last));
}

bool loadphotocomment(std::string& text, const std::string& album, const std::string& photo) {
    std::optional<std::string> found;
    if (const unread_text_t unread = load_photo_comment(found, album, photo)) {
        report_unread(unread);
    }
    text = found.value_or(text);
    return found.has_value();
}

bool loadphotocommentlines(std::list<std::string>& lines, const std::string& album, const std::string& photo) {
    std::string text;
    if (!loadphotocomment(text, album, photo)) {
        return false;
    }
    lines = split_lines(text);
    return true;
}

bool savephotocomment(const std::string& text, const std::string& album, const std::string& photo) {
    write_lock_t lock;
    if (!lock_album(lock, album)) {
        return false;
    }
    const text_place_t place = comment_of(album, photo);
    libutils::new_file_t file(place.path(), libutils::staging_t::above);
    std::error_code failure = open_text(file, place, album);
    if (!failure) {
        file.write(lines_of(text));
        failure = file.commit_to_disk();
    }
    if (failure) {
        libutils::report(place.path(), ": write open error, ", failure.message());
    }
    return !failure;
}

bool writephotocomment(std::ostream& out, std::list<std::string>& lines, unsigned long indent) {
    bool after_empty = false;
    for (const std::string& line : lines) {
        if (line.empty()) {
            out << libutils::putcn('\t', indent) << "<p>";
        } else if (after_empty) {
            out << line << '\n';
        } else {
            out << libutils::putcn('\t', indent) << "<br>" << line << '\n';
        }
        after_empty = line.empty();
    }
    return false;
}

}  // namespace taloram
