#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace taloram {

// The values of all attributes href and src of a page, and the addresses of srcset, as a browser takes them from the
// bytes: comments and the texts of scripts and styles hold none, nor does a tag without end; of srcset an address with
// a descriptor that is none is left out. (HTML Living Standard, 13.2.5 and 4.8.4.2.)
[[nodiscard]] std::vector<std::string> links_of_page(std::string_view page);

// What a link on the page `page` leads to; both paths are relative to one directory, out of which "../" may lead.
// Empty for what no file answers or nobody can know: another server, an absolute path, another scheme, the page itself.
[[nodiscard]] std::optional<std::string> resolve_link(const std::string& page, std::string_view link);

// What a server answers with for a link to `path`, below `directory`: a file, or the index of a directory; "" when
// there is none.
[[nodiscard]] std::string file_of_link(const std::string& directory, const std::string& path);

// No page is longer, in bytes.
constexpr uint64_t longest_page = uint64_t{1} << 28;

}  // namespace taloram
