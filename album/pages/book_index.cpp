#include "album/pages/book_index.h"

#include <list>
#include <sstream>

#include "album/album_layout.h"
#include "album/book_entries.h"
#include "album/engine_step.h"
#include "album/pages/page_frame.h"
#include "album/texts/text_file.h"
#include "album/write_lock.h"
#include "libutils/diagnostics.h"
#include "libutils/files/directory.h"
#include "libutils/text/text.h"
#include "messages/message.h"

namespace taloram {

namespace {

void write_heading_row(std::ostream& out) {
    out << "\t<tr>";
    for (const e_message_local_t column :
         {msg_directory_column, msg_count_column, msg_list, msg_title, msg_text_column}) {
        out << "<th>" << getmsg(column);
    }
    out << '\n';
}

// The row of the subdirectory `name`; `text` = its head.txt.
unread_text_t write_row(std::ostream& out, const std::string& directory, const std::string& name,
                        const std::string& text) {
    std::string count;
    if (const unread_text_t unread = load_count(count, directory)) {
        return unread;
    }
    std::istringstream head(text);
    std::string line;
    std::getline(head, line);
    libutils::chop(line);
    out << "\t<tr><td>" << name << "<td>" << count << "<td>";
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
    return {};
}

// A row for each subdirectory that has head.txt.
unread_text_t write_rows(std::ostream& out, const std::string& book, const std::list<std::string>& names,
                         closed_t closed) {
    for (const std::string& name : names) {
        const std::string directory = entry_path(book, name);
        const std::string path = text_path(directory, layout::head_text);
        std::string text;
        unread_text_t unread{path, load_text(text, path)};
        if (libutils::is_absent(unread.reason)) {
            continue;
        }
        if (unread && is_closed(directory)) {
            if (closed == closed_t::report) {
                report_closed(directory, unread.reason);
            }
            continue;
        }
        if (unread || (unread = write_row(out, directory, name, text))) {
            return unread;
        }
    }
    return {};
}

}  // namespace

bool makehtmlbook(const std::string& book) {
    return write_book_page(book, closed_t::report);
}

bool write_book_page(const std::string& book, closed_t closed) {
    write_lock_t lock;
    if (!lock_album(lock, book)) {
        return false;
    }
    std::list<std::string> names;
    if (libutils::list_directories(names, book)) {
        libutils::report(book, ": getdirs() failed.");
        return false;
    }
    page_texts_t texts;
    if (const unread_text_t unread = load_page_texts(texts, book)) {
        report_unread(unread);
        return false;
    }
    const std::string path = entry_path(book, layout::index_page);
    page_t out;
    write_page_head(out, texts);
    out << "\n<p><table>\n";
    write_heading_row(out);
    if (const unread_text_t unread = write_rows(out, book, names, closed)) {
        report_unread(unread);
        return false;
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
