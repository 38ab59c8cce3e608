#pragma once

#include <list>
#include <ostream>
#include <string>

namespace taloram {

// Comments are text files in an album's or book's txt/ directory, in the locale's encoding: head.txt holds the title
// twice and the opening text, last.txt the closing text, <photo>.txt (the photograph's name with its extension) the
// comment of a photograph. Reading is lenient about names and line ends; writing ends every line with CR LF.

// Loads the comments of `album`. False, and nothing changed, when it has no txt/.
bool loadcommenttxt(const std::string& album, std::string& title, std::string& head, std::string& last);

// Loads the comments that lie directly in `txtdir`. A text whose file is missing, and the title when the first line is
// empty, stay as they are. Texts come with their line ends.
void loadcomment(const std::string& txtdir, std::string& title, std::string& head, std::string& last);

// Writes head.txt and last.txt, making txt/ first. Failures are reported; a text that is there and can't be read is not
// replaced.
[[nodiscard]] bool savecommenttxt(const std::string& album, const std::string& title, const std::string& head,
                                  const std::string& last);

// The comment of a photograph, named by a path whose last component counts. False, silently, without a comment file.
[[nodiscard]] bool loadphotocomment(std::string& text, const std::string& album, const std::string& photo);

// The same as lines, split at LF and not chopped; `lines` is filled only on success.
[[nodiscard]] bool loadphotocommentlines(std::list<std::string>& lines, const std::string& album,
                                         const std::string& photo);

// Writes the comment of a photograph; txt/ must exist.
[[nodiscard]] bool savephotocomment(const std::string& text, const std::string& album, const std::string& photo);

// Writes comment lines into a page behind `indent` tabs, unescaped: "<br>" in front of a line, "<p>" for an empty one.
// The result carries no meaning.
bool writephotocomment(std::ostream& out, std::list<std::string>& lines, unsigned long indent);

}  // namespace taloram
