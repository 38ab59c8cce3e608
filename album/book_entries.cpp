#include "album/book_entries.h"

#include <fstream>
#include <list>

#include "album/album_layout.h"
#include "album/comment_store.h"
#include "libutils/directory.h"
#include "libutils/text.h"

namespace taloram {

namespace {

std::string load_count(const std::string& album) {
    std::string count;
    std::ifstream in(text_path(album, layout::count_text));
    std::getline(in, count);
    libutils::chop2(count);
    return count;
}

std::string first_line(const std::string& text) {
    std::list<std::string> lines;
    libutils::separate_token(lines, text, "\n");
    if (lines.empty()) {
        return "";
    }
    libutils::chop(lines.front());
    return lines.front();
}

}  // namespace

bool list_entries(std::vector<book_entry_t>& entries, const std::string& book) {
    entries.clear();
    std::list<std::string> names;
    if (!libutils::getdirs(names, book.c_str())) {
        return false;
    }
    names.reverse();
    for (const std::string& name : names) {
        book_entry_t entry;
        std::string head;
        std::string last;
        entry.name = name;
        entry.path = entry_path(book, name);
        if (!loadcommenttxt(entry.path, entry.title, head, last)) {
            continue;
        }
        entry.is_album = is_album(entry.path);
        if (entry.is_album) {
            entry.count = load_count(entry.path);
        }
        entry.head_line = first_line(head);
        entries.push_back(std::move(entry));
    }
    return true;
}

}  // namespace taloram
