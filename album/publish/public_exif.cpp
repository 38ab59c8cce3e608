#include "album/publish/public_exif.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>

#include "libgr/exif/ifd_walk.h"
#include "libgr/exif/tiff_header.h"

namespace taloram {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view identifier = "Exif\0\0"sv;
constexpr size_t longest_body = 0xFFFF - 2;

// TIFF 6.0, section 8, and EXIF 2.32, table 4.
constexpr uint16_t tag_orientation = 0x0112;
constexpr uint16_t tag_artist = 0x013B;
constexpr uint16_t tag_copyright = 0x8298;
constexpr uint16_t type_ascii = 2;
constexpr uint16_t type_short = 3;
constexpr uint16_t last_orientation = 8;

void add_number(std::string& out, uint64_t value, unsigned bytes) {
    for (unsigned i = 0; i < bytes; ++i) {
        out += static_cast<char>(value >> 8 * i & 0xFF);
    }
}

// The text as far as it is meant to be read: to its first NUL, and a copyright, which may have an editor's part behind
// the photographer's, to its second. Ends with one NUL; "" when there is nothing to read.
std::string readable_text(const libgr::ifd_entry_t& entry) {
    const std::string_view bytes(reinterpret_cast<const char*>(entry.value.begin()), entry.value.size());
    size_t end = bytes.find('\0');
    if (entry.tag == tag_copyright && end != std::string_view::npos) {
        const size_t second = std::min(bytes.find('\0', end + 1), bytes.size());
        end = second > end + 1 ? second : end;
    }
    std::string text(bytes.substr(0, end));
    return text.find_first_not_of(" \0"sv) == std::string::npos ? "" : text + '\0';
}

struct values_t {
    uint16_t orientation = 0;               // 0: none
    std::map<uint16_t, std::string> texts;  // by tag
};

std::string made_segment(const values_t& values) {
    const size_t count = values.texts.size() + (values.orientation != 0 ? 1 : 0);
    std::string out = std::string(identifier) + std::string("II*\0\x08\0\0\0"sv);
    const size_t texts_at = 8 + libgr::ifd_count_size + count * libgr::ifd_entry_size + 4;
    std::string texts;
    add_number(out, count, 2);
    if (values.orientation != 0) {
        add_number(out, tag_orientation, 2);
        add_number(out, type_short, 2);
        add_number(out, 1, 4);
        add_number(out, values.orientation, 4);
    }
    for (const auto& [tag, text] : values.texts) {
        add_number(out, tag, 2);
        add_number(out, type_ascii, 2);
        add_number(out, text.size(), 4);
        if (text.size() <= libgr::ifd_inline_size) {
            out += text + std::string(libgr::ifd_inline_size - text.size(), '\0');
        } else {
            add_number(out, texts_at + texts.size(), 4);
            texts += text + std::string(text.size() % 2, '\0');
        }
    }
    add_number(out, 0, 4);  // no other directory
    return out + texts;
}

}  // namespace

std::string public_exif(const libutils::bytes_t& exif) {
    libgr::tiff_header_t tiff;
    tiff.set_tiff_buffer(exif.subview(identifier.size()));
    if (!tiff.find_0th_ifd()) {
        return "";
    }
    values_t values;
    static_cast<void>(
        libgr::walk_ifd({tiff.ifd_0th, tiff, tiff.order(), libgr::ifd_source_t::main}, [&](const auto& entry) {
            const libutils::byte_reader value(entry.value, tiff.order());
            if (entry.tag == tag_orientation && entry.type == type_short && value.u16(0) <= last_orientation) {
                values.orientation = value.u16(0).value_or(0);
            } else if ((entry.tag == tag_artist || entry.tag == tag_copyright) && entry.type == type_ascii) {
                values.texts[entry.tag] = readable_text(entry);
            }
        }));
    std::erase_if(values.texts, [](const auto& text) { return text.second.empty(); });
    if (values.orientation == 0 && values.texts.empty()) {
        return "";
    }
    std::string segment = made_segment(values);
    while (segment.size() > longest_body) {
        values.texts.erase(std::prev(values.texts.end()));  // values that overlap
        segment = made_segment(values);
    }
    return segment;
}

}  // namespace taloram
