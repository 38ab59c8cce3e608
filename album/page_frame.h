#pragma once

#include <fstream>
#include <list>
#include <ostream>
#include <string>

// What all pages of albums and books share. Pages are written without escaping and end their lines with LF.
namespace taloram {

// The album comment as pages show it.
struct page_texts_t {
    std::string title;
    std::list<std::string> head;
    std::list<std::string> last;
};

// The page `path`, emptied, for writing with numbers in the classic form. When it can't be created the stream has
// failed and errno tells why.
[[nodiscard]] std::ofstream open_page(const std::string& path);

// From "<HTML>" to "<BODY>"; a page without a title has no title element.
void write_page_start(std::ostream& out);
void write_page_start(std::ostream& out, const std::string& title);

// The start of a page with a title, the title as its heading and the opening text.
void write_page_head(std::ostream& out, page_texts_t& texts);

// From the rule to "</HTML>": the address and the time stamp.
void write_page_end(std::ostream& out);

// The closing text, the link to the page above, and the end.
void write_page_foot(std::ostream& out, page_texts_t& texts);

}  // namespace taloram
