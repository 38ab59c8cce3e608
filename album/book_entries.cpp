#include "album/book_entries.h"

#include <list>

#include "album/album_layout.h"
#include "album/texts/text_file.h"
#include "libutils/files/directory.h"
#include "libutils/text/text.h"

namespace taloram {

namespace {

std::string first_line(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

void load_texts(book_entry_t& entry) {
    comment_texts_t texts;
    entry.unread = load_comments(texts, entry.path);
    if (!entry.unread && entry.is_album) {
        entry.unread = load_count(entry.count, entry.path);
    }
    if (entry.unread) {
        report_unread(entry.unread);
    }
    entry.title = texts.title;
    entry.head_line = first_line(texts.head);
    libutils::chop(entry.head_line);
}

}  // namespace

std::error_code list_book_entries(std::vector<book_entry_t>& entries, const std::string& book) {
    entries.clear();
    std::list<std::string> names;
    const std::error_code failure = libutils::list_directories(names, book);
    names.reverse();
    for (const std::string& name : names) {
        book_entry_t entry;
        entry.name = name;
        entry.path = entry_path(book, name);
        if (is_exist(entry_path(entry.path, layout::text))) {
            entry.is_album = is_album(entry.path);
            load_texts(entry);
            entries.push_back(std::move(entry));
        }
    }
    return failure;
}

unread_text_t load_count(std::string& count, const std::string& album) {
    const std::string path = text_path(album, layout::count_text);
    std::string text;
    const std::error_code failure = load_text(text, path);
    if (failure && !libutils::is_absent(failure)) {
        return {path, failure};
    }
    count = first_line(text);
    libutils::chop2(count);
    return {};
}

}  // namespace taloram
