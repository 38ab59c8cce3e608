#include "album/publish/movie_place.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>

#include "libutils/bytes/byte_reader.h"

namespace taloram {

namespace {

constexpr uint32_t type_of(const char (&text)[5]) {
    uint32_t type = 0;
    for (const char c : std::string_view(text, 4)) {
        type = type << 8 | static_cast<unsigned char>(c);
    }
    return type;
}

constexpr uint32_t meta = type_of("meta");
constexpr uint32_t keys = type_of("keys");
constexpr uint32_t containers[] = {
    type_of("moov"), type_of("trak"), type_of("moof"), type_of("traf"), type_of("udta"), type_of("ilst"), meta};
constexpr std::string_view key_of_place = "com.apple.quicktime.location";

constexpr uint64_t short_header = 8;   // size and type
constexpr uint64_t long_header = 16;   // the same and a size of 64 bits
constexpr uint64_t version_size = 4;   // and flags
constexpr uint64_t text_header = 4;    // length and language
constexpr unsigned deepest_level = 8;  // half of it is in use

struct box_t {
    uint32_t type = 0;
    uint64_t contents = 0;
    uint64_t end = 0;  // at most that of the box around it
};

class box_walk_t {
  public:
    explicit box_walk_t(const libutils::byte_reader& movie) : movie_(movie) {}

    [[nodiscard]] bool finds_place(uint64_t at, uint64_t end, unsigned level) const {
        while (const auto box = read_box(at, end, level)) {
            if (is_place(*box) ||
                (is_container(*box) && level < deepest_level && finds_place(first_box(*box), box->end, level + 1))) {
                return true;
            }
            at = box->end;
        }
        return false;
    }

  private:
    [[nodiscard]] std::optional<box_t> read_box(uint64_t at, uint64_t end, unsigned level) const {
        if (at > end || end - at < short_header) {
            return std::nullopt;
        }
        uint64_t header = short_header;
        uint64_t size = movie_.u32(at).value_or(0);
        if (size == 1) {
            header = long_header;
            size = uint64_t{movie_.u32(at + 8).value_or(0)} << 32 | movie_.u32(at + 12).value_or(0);
        } else if (size == 0 && level == 0) {
            size = end - at;
        }
        if (size < header || end - at < header) {
            return std::nullopt;
        }
        return box_t{movie_.u32(at + 4).value_or(0), at + header, at + std::min(size, end - at)};
    }

    [[nodiscard]] static bool is_container(const box_t& box) {
        return std::find(std::begin(containers), std::end(containers), box.type) != std::end(containers);
    }

    // QuickTime's metadata begin with a box, those of the ISO format with a version.
    [[nodiscard]] uint64_t first_box(const box_t& box) const {
        const bool is_versioned = box.type == meta && movie_.u32(box.contents + 4) != type_of("hdlr");
        return box.contents + (is_versioned ? version_size : 0);
    }

    [[nodiscard]] bool is_place(const box_t& box) const {
        constexpr uint32_t coordinates = type_of("\xA9xyz");
        return (box.type == coordinates && box.end - box.contents > text_header) || box.type == type_of("loci") ||
               (box.type == keys && has_key_of_place(box));
    }

    // A version and a count, then keys, each with its own size, a namespace and a name.
    [[nodiscard]] bool has_key_of_place(const box_t& box) const {
        uint64_t at = box.contents + version_size + 4;
        while (at < box.end && box.end - at >= short_header) {
            const uint64_t size = movie_.u32(at).value_or(0);
            if (size < short_header || size > box.end - at) {
                break;
            }
            const auto name = movie_.bytes(at + short_header, size - short_header);
            if (std::string_view(reinterpret_cast<const char*>(name.data()), name.size()).starts_with(key_of_place)) {
                return true;
            }
            at += size;
        }
        return false;
    }

    const libutils::byte_reader& movie_;
};

}  // namespace

bool names_a_place(std::span<const unsigned char> movie) {
    static const libutils::motorola_byteorder order;
    const libutils::byte_reader reader(movie, order);
    return box_walk_t(reader).finds_place(0, reader.size(), 0);
}

}  // namespace taloram
