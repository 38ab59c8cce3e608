#include "album/publish/public_photo.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <unordered_set>

#include "album/publish/public_exif.h"
#include "libutils/bytes/byte_reader.h"

namespace taloram {

namespace {

using namespace std::string_view_literals;

// Second bytes of marker codes (ITU-T T.81, table B.1).
enum marker_t : uint8_t {
    stuffed_zero = 0x00,
    tem = 0x01,
    rst0 = 0xD0,
    rst7 = 0xD7,
    soi = 0xD8,
    eoi = 0xD9,
    sos = 0xDA,
    app0 = 0xE0,
    app1 = 0xE1,
    app2 = 0xE2,
    app14 = 0xEE,
    app15 = 0xEF,
    com = 0xFE,
    fill = 0xFF,
};

constexpr uint64_t code_size = 2;
constexpr uint64_t length_size = 2;
constexpr std::string_view jfif_identifier = "JFIF\0"sv;
constexpr size_t jfif_size = 14;  // without a thumbnail, whose width and height are its last two bytes
constexpr std::string_view exif_identifier = "Exif\0"sv;
constexpr std::string_view profile_identifier = "ICC_PROFILE\0"sv;
constexpr std::string_view adobe_identifier = "Adobe"sv;
constexpr size_t adobe_size = 12;

bool is_data(uint8_t code) {
    return (code >= app0 && code <= app15) || code == com;
}

bool stands_alone(uint8_t code) {
    return code == tem || (code >= rst0 && code <= rst7);
}

struct segment_t {
    uint8_t code = 0;
    uint64_t start = 0;  // of the marker
    uint64_t body = 0;
    uint64_t end = 0;
};

}  // namespace

class public_photo_t::reader_t {
  public:
    explicit reader_t(public_photo_t& photo) : photo_(photo), bytes_(photo.photo_, order_) {}

    [[nodiscard]] bool read() {
        if (bytes_.u16(0) != (fill << 8 | soi)) {
            return false;
        }
        keep(0, code_size);
        uint64_t at = code_size;
        bool has_exif = false;
        bool has_jfif = false;
        while (const auto segment = next_segment(at)) {
            at = segment->end;
            if (segment->code == sos) {
                read_scans(*segment);
                return true;
            }
            if (!is_data(segment->code)) {
                keep(segment->start, segment->end);
            } else if (segment->code == app0 && !has_jfif && begins_with(*segment, jfif_identifier, jfif_size)) {
                has_jfif = true;
                std::string body(text(segment->body, segment->body + jfif_size));
                body.replace(jfif_size - 2, 2, 2, '\0');
                add_segment(app0, std::move(body));
            } else if (segment->code == app1 && !has_exif && begins_with(*segment, exif_identifier)) {
                has_exif = true;
                add_segment(app1, public_exif(photo_.photo_.subview(segment->body, segment->end - segment->body)));
            } else if (segment->code == app2 && begins_with(*segment, profile_identifier)) {
                keep(segment->start, segment->end);
            } else if (segment->code == app14 && begins_with(*segment, adobe_identifier, adobe_size)) {
                add_segment(app14, std::string(text(segment->body, segment->body + adobe_size)));
            }
        }
        return false;
    }

  private:
    [[nodiscard]] std::string_view text(uint64_t begin, uint64_t end) const {
        const auto part = bytes_.bytes(begin, end - begin);
        return {reinterpret_cast<const char*>(part.data()), part.size()};
    }

    [[nodiscard]] bool begins_with(const segment_t& segment, std::string_view identifier, size_t least = 0) const {
        const std::string_view body = text(segment.body, segment.end);
        return body.size() >= least && body.starts_with(identifier);
    }

    void keep(uint64_t begin, uint64_t end) {
        if (begin < end) {
            photo_.parts_.push_back(text(begin, end));
        }
    }

    // Nothing for an empty body.
    void add_segment(uint8_t code, std::string body) {
        if (!body.empty()) {
            const size_t length = body.size() + length_size;
            const char head[] = {static_cast<char>(fill), static_cast<char>(code), static_cast<char>(length >> 8),
                                 static_cast<char>(length & 0xFF)};
            photo_.parts_.push_back(photo_.made_.emplace_back(std::string(head, sizeof head) + body));
        }
    }

    // The segment whose marker, behind any fill bytes, is at `at`; one with the code EOI has no body. Empty where there
    // is no marker of a segment, or the file ends before it does.
    [[nodiscard]] std::optional<segment_t> segment_at(uint64_t at) const {
        if (bytes_.u8(at) != fill) {
            return std::nullopt;
        }
        while (bytes_.u8(at + 1) == fill) {
            ++at;
        }
        const auto code = bytes_.u8(at + 1);
        if (code == eoi) {
            return segment_t{eoi, at, at + code_size, at + code_size};
        }
        const auto length = bytes_.u16(at + code_size);
        if (!code || code == stuffed_zero || code == soi || stands_alone(*code) || !length || *length < length_size ||
            !bytes_.holds(at + code_size, *length)) {
            return std::nullopt;
        }
        return segment_t{*code, at, at + code_size + length_size, at + code_size + *length};
    }

    // The first segment of the header from `at` on. Decoders pass over what stands between two segments.
    [[nodiscard]] std::optional<segment_t> next_segment(uint64_t at) const {
        for (; (at = find_marker(at)) < bytes_.size(); at += code_size) {
            const uint8_t code = bytes_.u8(at + 1).value_or(stuffed_zero);
            if (code != stuffed_zero && !stands_alone(code)) {
                const auto segment = segment_at(at);
                return segment && segment->code != eoi ? segment : std::nullopt;
            }
        }
        return std::nullopt;
    }

    // Where the next 0xFF stands that no other follows, from `at` on; else the end.
    [[nodiscard]] uint64_t find_marker(uint64_t at) const {
        while (at < bytes_.size()) {
            const auto rest = bytes_.bytes(at, bytes_.size() - at);
            const void* const found = std::memchr(rest.data(), fill, rest.size());
            if (found == nullptr) {
                break;
            }
            at += static_cast<uint64_t>(static_cast<const unsigned char*>(found) - rest.data());
            if (bytes_.u8(at + 1) != fill) {
                return at;
            }
            ++at;
        }
        return bytes_.size();
    }

    // From the header of the first scan to the end of the image.
    void read_scans(const segment_t& scan) {
        uint64_t kept_from = scan.start;
        uint64_t at = scan.end;
        while ((at = find_marker(at)) < bytes_.size()) {
            const uint8_t code = bytes_.u8(at + 1).value_or(stuffed_zero);
            if (code == stuffed_zero || stands_alone(code)) {
                at += code_size;
                continue;
            }
            std::vector<segment_t> between;
            if (!find_next_scan(between, at)) {
                at += code_size;
                continue;
            }
            for (const segment_t& segment : between) {
                if (is_data(segment.code)) {
                    keep(kept_from, segment.start);
                    kept_from = segment.end;
                }
            }
            at = between.back().end;
            if (between.back().code == eoi) {
                break;
            }
        }
        keep(kept_from, std::min(at, bytes_.size()));
    }

    // The segments from `at` on up to the next scan header or the end of the image. Empty, and false, when they don't
    // lead there: then the scan is damaged, and the marker a part of the damage.
    [[nodiscard]] bool find_next_scan(std::vector<segment_t>& between, uint64_t at) {
        while (const auto segment = leads_nowhere_.contains(at) ? std::nullopt : segment_at(at)) {
            between.push_back(*segment);
            if (segment->code == sos || segment->code == eoi) {
                return true;
            }
            at = segment->end;
        }
        // So that no byte is walked over more than once.
        for (const segment_t& segment : between) {
            leads_nowhere_.insert(segment.start);
        }
        between.clear();
        return false;
    }

    const libutils::motorola_byteorder order_;
    public_photo_t& photo_;
    const libutils::byte_reader bytes_;
    std::unordered_set<uint64_t> leads_nowhere_;
};

bool public_photo_t::read(const libutils::bytes_t& photo) {
    photo_ = photo;
    made_.clear();
    parts_.clear();
    return reader_t(*this).read();
}

}  // namespace taloram
