#include "album/texts/text_file.h"

#include "libutils/files/read_file.h"
#include "libutils/text/text.h"

namespace taloram {

std::error_code load_text(std::string& text, const std::string& path) {
    constexpr uint64_t longest = uint64_t{256} << 20;  // bytes; the sums of some million files
    return libutils::read_file(text, path, longest);
}

std::list<std::string> split_lines(const std::string& text) {
    std::list<std::string> lines;
    libutils::separate_token(lines, text, "\n");
    return lines;
}

}  // namespace taloram
