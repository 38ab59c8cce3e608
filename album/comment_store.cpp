#include "album/comment_store.h"

#include <cerrno>
#include <cstring>
#include <iostream>
#include <sstream>

#include "album/album_layout.h"
#include "album/text_file.h"
#include "album/write_lock.h"
#include "libutils/diagnostics.h"
#include "libutils/directory.h"
#include "libutils/new_file.h"
#include "libutils/path.h"
#include "libutils/text.h"
#include "talolib/option.h"

namespace taloram {

namespace {

// Texts are written under the first name; cards and other systems may have left the second.
struct text_name_t {
    const char* name;
    const char* upper_case;
};
constexpr text_name_t head_name{layout::head_text, "HEAD.TXT"};
constexpr text_name_t last_name{layout::last_text, "LAST.TXT"};
constexpr text_name_t photo_suffix{".txt", ".TXT"};

// Reads a text under either of its names; `path` is then the one that was read.
bool load_either(std::string& text, std::string& path, const std::string& txtdir, const text_name_t& name) {
    for (const char* candidate : {name.name, name.upper_case}) {
        path = entry_path(txtdir, candidate);
        if (!load_text(text, path)) {
            return true;
        }
    }
    talolib::trace(std::cerr, txtdir, ": ", name.name, " not found.");
    return false;
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

// Nobody can write the user's words again, so they wait for the disk; and those that could not be read were not seen by
// whoever wants to replace them. The failure is one of opening until the file is open.
class comment_file_t {
  public:
    comment_file_t(std::string album, const std::string& path)
        : album_(std::move(album)), path_(path), file_(path, libutils::staging_t::above) {}

    [[nodiscard]] std::error_code open() {
        std::string text;
        const std::error_code unread = load_text(text, path_);
        return unread && !libutils::is_absent(unread)
                   ? unread
                   : file_.open_as_old({libutils::links_t::others_t::refused, album_});
    }
    [[nodiscard]] std::error_code save(const std::string& lines) {
        file_.write(lines);
        return file_.commit_to_disk();
    }

  private:
    std::string album_;
    std::string path_;
    libutils::new_file_t file_;
};

bool save_text(const std::string& album, const std::string& path, const std::string& lines) {
    comment_file_t file(album, path);
    if (const std::error_code failure = file.open()) {
        libutils::report(path, ": file open failed, ", failure.message());
        return false;
    }
    if (file.save(lines)) {
        libutils::report(path, ": file write error.");
        return false;
    }
    return true;
}

std::string photo_comment_path(const std::string& album, const std::string& photo, const char* suffix) {
    return text_path(album, libutils::filename(photo) + suffix);
}

}  // namespace

bool loadcommenttxt(const std::string& album, std::string& title, std::string& head, std::string& last) {
    const std::string txtdir = entry_path(album, layout::text);
    if (!is_exist(txtdir)) {
        talolib::trace(std::cout, txtdir, ": stat failed, ", std::strerror(errno));
        return false;
    }
    loadcomment(txtdir, title, head, last);
    return true;
}

void loadcomment(const std::string& txtdir, std::string& title, std::string& head, std::string& last) {
    std::string text;
    std::string path;
    if (load_either(text, path, txtdir, head_name)) {
        take_title(title, head, path, text);
    }
    if (load_either(text, path, txtdir, last_name)) {
        last = text;
    }
}

bool savecommenttxt(const std::string& album, const std::string& title, const std::string& head,
                    const std::string& last) {
    write_lock_t lock;
    if (!lock_album(lock, album)) {
        return false;
    }
    libutils::mkdir(entry_path(album, layout::text).c_str());
    const std::string title_line = title + "\r\n";
    return save_text(album, text_path(album, head_name.name), title_line + title_line + lines_of(head)) &&
           save_text(album, text_path(album, last_name.name), lines_of(last));
}

bool loadphotocomment(std::string& text, const std::string& album, const std::string& photo) {
    const std::string lower = photo_comment_path(album, photo, photo_suffix.name);
    const std::string upper = photo_comment_path(album, photo, photo_suffix.upper_case);
    const bool has_lower = is_exist(lower);
    if (!has_lower && !is_exist(upper)) {
        talolib::trace(std::cerr, lower, ": comment text open failed, ", std::strerror(errno));
        return false;
    }
    const std::string& path = has_lower ? lower : upper;
    if (const std::error_code failure = load_text(text, path)) {
        libutils::report(path, ": comment text load failed, ", failure.message());
        return false;
    }
    return true;
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
    const std::string path = photo_comment_path(album, photo, photo_suffix.name);
    comment_file_t file(album, path);
    std::error_code failure = file.open();
    if (!failure) {
        failure = file.save(lines_of(text));
    }
    if (failure) {
        libutils::report(path, ": write open error, ", failure.message());
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
