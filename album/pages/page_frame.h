#pragma once

#include <list>
#include <locale>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>

#include "album/texts/comment_store.h"
#include "libutils/files/new_file.h"

// What all pages of albums and books share. Pages are written without escaping and end their lines with LF.
namespace taloram {

// The album comment as pages show it.
struct page_texts_t {
    std::string title;
    std::list<std::string> head;
    std::list<std::string> last;
};

// Loads the comments of `directory`, an album or book; lines keep their CR. Nothing is written from texts that can't be
// read.
[[nodiscard]] unread_text_t load_page_texts(page_texts_t& texts, const std::string& directory);

// A page while it is composed: numbers take the classic form.
class page_t : public std::ostringstream {
  public:
    page_t() { imbue(std::locale::classic()); }

    // Puts the page in place of the file `path` of the album or book `directory`. A link that leads out of it is
    // replaced. When it fails the old page stays.
    [[nodiscard]] std::error_code save(const std::string& directory, const std::string& path,
                                       libutils::staging_t staging) const;
};

// From "<HTML>" to "<BODY>"; a page without a title has no title element.
void write_page_start(std::ostream& out);
void write_page_start(std::ostream& out, const std::string& title);

// The start of a page with a title, the title as its heading and the opening text.
void write_page_head(std::ostream& out, page_texts_t& texts);

// From the rule to "</HTML>": the address and the time stamp.
void write_page_end(std::ostream& out);

// The link to the page above.
constexpr std::string_view line_up = "<p><center><a href=\"../index.html\">UP</a></center>\n";

// The closing text, the link to the page above, and the end.
void write_page_foot(std::ostream& out, page_texts_t& texts);

}  // namespace taloram
