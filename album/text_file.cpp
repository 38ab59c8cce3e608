#include "album/text_file.h"

#include "libutils/ofsvector.h"
#include "libutils/text.h"

namespace taloram {

bool load_text(std::string& text, const std::string& path) {
    libutils::bytes_t bytes;
    if (!bytes.load(0, path.c_str(), libutils::PROT_READ_ONLY, 0, false, nullptr)) {
        return false;
    }
    std::string whole(bytes.begin(), bytes.end());
    if (!bytes.is_intact()) {
        return false;
    }
    text = std::move(whole);
    return true;
}

std::list<std::string> split_lines(const std::string& text) {
    std::list<std::string> lines;
    libutils::separate_token(lines, text, "\n");
    return lines;
}

}  // namespace taloram
