#pragma once

#include <string>
#include <string_view>

namespace taloram {

// Pages show names, comments and shooting data as they are, markup included. True for a text that can run a program in
// the browser of whoever looks at the page: a <script> element, an attribute of an event ("onload=") in a tag, or an
// address that begins with "javascript:". Case does not matter.
[[nodiscard]] bool is_active_markup(std::string_view text);

// One line on standard error about `subject` when it does.
void warn_of_active_markup(const std::string& subject, std::string_view text);

}  // namespace taloram
