#pragma once

#include <list>
#include <optional>
#include <ostream>
#include <string>
#include <system_error>

namespace taloram {

// Comments are text files in an album's or book's txt/ directory, in the locale's encoding: head.txt holds the title
// twice and the opening text, last.txt the closing text, <photo>.txt (the photograph's name with its extension) the
// comment of a photograph. Reading is lenient about names and line ends; writing ends every line with CR LF.
//
// No text and one that is there and can't be read are two things: what takes the place of a text must not be written
// by somebody who did not see it.

// The comments of an album or book; head and last with their line ends.
struct comment_texts_t {
    std::string title;
    std::string head;
    std::string last;
};

// A text that is there and can't be read. No reason when there is none.
struct unread_text_t {
    std::string path;
    std::error_code reason;

    explicit operator bool() const { return static_cast<bool>(reason); }
};

// The line on standard error that names the text.
void report_unread(const unread_text_t& unread);

// Loads the comments of an album or book, or those that lie directly in `txtdir`. A text whose file is missing, and the
// title when the first line is empty, stay as they are; all do when one can't be read.
[[nodiscard]] unread_text_t load_comments(comment_texts_t& texts, const std::string& album);
[[nodiscard]] unread_text_t load_comments_in(comment_texts_t& texts, const std::string& txtdir);

// True for the name of a file of `txtdir` that load_comments_in() reads, or that an album's own texts have.
[[nodiscard]] bool becomes_comments(const std::string& txtdir, const std::string& name);

// The comment of a photograph, named by a path whose last component counts; nothing when there is none.
[[nodiscard]] unread_text_t load_photo_comment(std::optional<std::string>& text, const std::string& album,
                                               const std::string& photo);

// load_comments() as three strings. False, and nothing changed, when there is no txt/ or, after a report, when a text
// can't be read.
bool loadcommenttxt(const std::string& album, std::string& title, std::string& head, std::string& last);

// load_comments_in() as three strings. A text that can't be read is reported and changes nothing.
void loadcomment(const std::string& txtdir, std::string& title, std::string& head, std::string& last);

// Writes head.txt and last.txt, making txt/ first. The title becomes one line. Failures are reported; a text that is
// there and can't be read is not replaced.
[[nodiscard]] bool savecommenttxt(const std::string& album, const std::string& title, const std::string& head,
                                  const std::string& last);

// load_photo_comment(). False without a comment file, silently, and, after a report, when it can't be read.
[[nodiscard]] bool loadphotocomment(std::string& text, const std::string& album, const std::string& photo);

// The same as lines, split at LF and not chopped; `lines` is filled only on success.
[[nodiscard]] bool loadphotocommentlines(std::list<std::string>& lines, const std::string& album,
                                         const std::string& photo);

// Writes the comment of a photograph; txt/ must exist.
[[nodiscard]] bool savephotocomment(const std::string& text, const std::string& album, const std::string& photo);

// Writes comment lines into a page after `indent` tabs, unescaped: "<br>" in front of a line, "<p>" for an empty one.
// The result carries no meaning.
bool writephotocomment(std::ostream& out, std::list<std::string>& lines, unsigned long indent);

}  // namespace taloram
