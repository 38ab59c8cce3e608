#include "album/book_index.h"

#include <list>
#include <sstream>

#include "album/album_layout.h"
#include "album/comment_store.h"
#include "album/page_frame.h"
#include "album/text_file.h"
#include "album/write_lock.h"
#include "libutils/diagnostics.h"
#include "libutils/directory.h"
#include "libutils/text.h"
#include "settings/message.h"

namespace taloram {

namespace {

page_texts_t load_texts(const std::string& book) {
    std::string title;
    std::string head;
    std::string last;
    loadcommenttxt(book, title, head, last);
    return {title, split_lines(head), split_lines(last)};
}

void write_heading_row(std::ostream& out) {
    out << "\t<tr>";
    for (const e_message_local_t column :
         {msg_directory_column, msg_count_column, msg_list, msg_title, msg_text_column}) {
        out << "<th>" << getmsg(column);
    }
    out << '\n';
}

// The first line of an album's count file, "" without one.
std::string load_count(const std::string& directory) {
    std::string text;
    std::string line;
    if (!load_text(text, text_path(directory, layout::count_text))) {
        line = text.substr(0, text.find('\n'));
        libutils::chop2(line);
    }
    return line;
}

// The row of a subdirectory; one without an opening text has none.
void write_row(std::ostream& out, const std::string& book, const std::string& name) {
    const std::string directory = entry_path(book, name);
    std::string text;
    if (load_text(text, text_path(directory, layout::head_text))) {
        return;
    }
    std::istringstream head(text);
    std::string line;
    std::getline(head, line);
    libutils::chop(line);
    out << "\t<tr><td>" << name << "<td>" << load_count(directory) << "<td>";
    if (is_exist(entry_path(directory, layout::list_page))) {
        out << "<a href=\"" << entry_path(name, layout::list_page) << "\">" << getmsg(msg_list) << "</a> ";
    }
    out << "<td><a href=\"" << entry_path(name, layout::index_page) << "\">" << line << "</a>";
    std::getline(head, line);
    std::getline(head, line);
    if (head.good()) {
        libutils::chop(line);
        out << "<td>" << line;
    }
    out << '\n';
}

}  // namespace

bool makehtmlbook(const std::string& book) {
    write_lock_t lock;
    if (!lock_album(lock, book)) {
        return false;
    }
    std::list<std::string> names;
    if (!libutils::getdirs(names, book.c_str())) {
        libutils::report(book, ": getdirs() failed.");
        return false;
    }
    page_texts_t texts = load_texts(book);
    const std::string path = entry_path(book, layout::index_page);
    page_t out;
    write_page_head(out, texts);
    out << "\n<p><table>\n";
    write_heading_row(out);
    for (const std::string& name : names) {
        write_row(out, book, name);
    }
    out << "</table>\n";
    write_page_foot(out, texts);
    if (const std::error_code failure = out.save(book, path, libutils::staging_t::beside)) {
        libutils::report(path, ": write open error, ", failure.message());
        return false;
    }
    return true;
}

}  // namespace taloram
