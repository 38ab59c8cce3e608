#include "album/pages/page_frame.h"

#include <array>
#include <ctime>

#include "album/album_layout.h"
#include "album/pages/active_markup.h"
#include "album/texts/text_file.h"
#include "settings/settings.h"

namespace taloram {

namespace {

void write_start(std::ostream& out, const std::string& title_line) {
    out << "<HTML>\n<HEAD>\n";
    if (!g_global.html_header.empty()) {
        out << '\t' << g_global.html_header << '\n';
    }
    out << title_line << "</HEAD>\n\n<BODY>\n";
}

void write_time_stamp(std::ostream& out) {
    out << "<!-- hhmts start -->\n";
    const std::time_t now = std::time(nullptr);
    const std::tm* local = std::localtime(&now);
    std::array<char, 100> text{};
    if (local != nullptr && std::strftime(text.data(), text.size(), "%c", local) != 0) {
        out << "HTML Generated: " << text.data() << " (" << tzname[0] << ")\n";
    }
    out << "<!-- hhmts end -->\n";
}

}  // namespace

unread_text_t load_page_texts(page_texts_t& texts, const std::string& directory) {
    comment_texts_t comments;
    unread_text_t unread = load_comments(comments, directory);
    if (!unread) {
        warn_of_active_markup(text_path(directory, layout::head_text), comments.title + '\n' + comments.head);
        warn_of_active_markup(text_path(directory, layout::last_text), comments.last);
        texts = {comments.title, split_lines(comments.head), split_lines(comments.last)};
    }
    return unread;
}

std::error_code page_t::save(const std::string& directory, const std::string& path, libutils::staging_t staging) const {
    return libutils::replace_file(path, staging, str(), {libutils::links_t::others_t::replaced, directory});
}

void write_page_start(std::ostream& out) {
    write_start(out, "");
}

void write_page_start(std::ostream& out, const std::string& title) {
    write_start(out, "\t<title>" + title + "</title>\n");
}

void write_page_head(std::ostream& out, page_texts_t& texts) {
    write_page_start(out, texts.title);
    out << "\t<CENTER><h1>" << texts.title << "</h1></CENTER>\n";
    writephotocomment(out, texts.head, 0);
}

void write_page_end(std::ostream& out) {
    out << "<hr>\n";
    if (!g_global.html_address.empty()) {
        out << "\t<address>" << g_global.html_address << "</address>\n";
    }
    write_time_stamp(out);
    out << "</BODY>\n</HTML>\n";
}

void write_page_foot(std::ostream& out, page_texts_t& texts) {
    writephotocomment(out, texts.last, 0);
    out << line_up;
    write_page_end(out);
}

}  // namespace taloram
