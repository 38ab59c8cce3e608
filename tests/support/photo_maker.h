#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// Makes photographs for tests and samples with libjpeg directly, so that they do not depend on the code under test.
namespace test_support {

using blob_t = std::vector<unsigned char>;

enum class sampling_t { s444, s422, s440, s420, s411, gray };

// Builds the TIFF structure of an EXIF segment, entry by entry, in either byte order. Values over 4 bytes are placed
// after the directories. Type numbers are those of TIFF 6.0.
class exif_builder_t {
  public:
    enum ifd_t { ifd0, exif, ifd1 };

    explicit exif_builder_t(bool motorola = false) : motorola_(motorola) {}

    // With a terminating NUL.
    exif_builder_t& text(ifd_t ifd, uint16_t tag, const std::string& value) {
        return add(ifd, tag, 2, value.size() + 1, blob_t(value.c_str(), value.c_str() + value.size() + 1));
    }
    exif_builder_t& shorts(ifd_t ifd, uint16_t tag, const std::vector<uint16_t>& values) {
        return add(ifd, tag, 3, values.size(), packed({values.begin(), values.end()}, 2));
    }
    exif_builder_t& longs(ifd_t ifd, uint16_t tag, const std::vector<uint32_t>& values) {
        return add(ifd, tag, 4, values.size(), packed(values, 4));
    }
    exif_builder_t& rational(ifd_t ifd, uint16_t tag, uint32_t numerator, uint32_t denominator) {
        return add(ifd, tag, 5, 1, packed({numerator, denominator}, 4));
    }
    exif_builder_t& srational(ifd_t ifd, uint16_t tag, int32_t numerator, int32_t denominator) {
        return add(ifd, tag, 10, 1, packed({static_cast<uint32_t>(numerator), static_cast<uint32_t>(denominator)}, 4));
    }
    // Type UNDEFINED.
    exif_builder_t& bytes(ifd_t ifd, uint16_t tag, const blob_t& value) {
        return add(ifd, tag, 7, value.size(), value);
    }
    // An entry as it stands: any type, count and value field.
    exif_builder_t& raw(ifd_t ifd, uint16_t tag, uint16_t type, uint32_t count, uint32_t value_field) {
        return add(ifd, tag, type, count, packed({value_field}, 4));
    }
    exif_builder_t& thumbnail(const blob_t& jpeg);

    // One directory alone, with value offsets counted from `base` bytes before its own start: what maker notes are made
    // of.
    [[nodiscard]] blob_t directory(ifd_t ifd, uint32_t base) const;

    [[nodiscard]] blob_t tiff() const;
    [[nodiscard]] blob_t app1() const;  // "Exif" NUL NUL and the TIFF structure

  private:
    struct entry_t {
        uint16_t tag;
        uint16_t type;
        uint32_t count;
        blob_t value;  // in the builder's byte order
    };

    exif_builder_t& add(ifd_t ifd, uint16_t tag, uint16_t type, size_t count, const blob_t& value);
    [[nodiscard]] blob_t packed(const std::vector<uint32_t>& values, unsigned width) const;  // bytes a value
    [[nodiscard]] blob_t layout(std::vector<entry_t> entries, uint32_t start, uint32_t next) const;

    bool motorola_;
    std::vector<entry_t> entries_[3];
    blob_t thumbnail_;
};

struct segment_t {
    uint8_t marker;  // second byte of the code
    blob_t body;
};

struct photo_t {
    unsigned width = 64;
    unsigned height = 48;
    sampling_t sampling = sampling_t::s420;
    int quality = 90;
    bool progressive = false;
    unsigned seed = 1;                  // of the picture: gradients, shapes and a little noise
    unsigned restart_interval = 0;      // MCUs
    std::vector<segment_t> segments{};  // written in this order after SOI
};

// The bytes of a JPEG file, with a JFIF segment only when the photograph has no segments of its own. What libjpeg can't
// make or, below, can't read ends the program.
[[nodiscard]] blob_t make_jpeg(const photo_t& photo);

// The same with an EXIF segment, in front of the photograph's own segments, that holds `orientation` (0: none) and,
// where asked for, a thumbnail of 160 x 120 pixels. The pixels are stored as the sensor saw them: with orientation 3, 6
// or 8 the scene lies turned in the file and stands upright after the turn.
[[nodiscard]] blob_t make_camera_jpeg(const photo_t& photo, unsigned orientation, bool with_thumbnail);

// Pixels of a JPEG file, decoded with libjpeg alone: rows top-down, `channels` bytes a pixel, no padding.
struct pixels_t {
    unsigned width = 0;
    unsigned height = 0;
    unsigned channels = 0;
    blob_t bytes;
};
[[nodiscard]] pixels_t decode(const blob_t& jpeg);

// Every quantised coefficient of a JPEG file, component by component, block row by block row.
struct coefficients_t {
    struct component_t {
        unsigned blocks_wide = 0;
        unsigned blocks_high = 0;
        std::vector<int16_t> values;  // 64 a block, natural order
    };
    std::vector<component_t> components;
};
[[nodiscard]] coefficients_t read_coefficients(const blob_t& jpeg);

// Throw std::runtime_error where the file can't be read or written.
[[nodiscard]] blob_t read_file(const std::string& path);
void write_file(const std::string& path, const blob_t& bytes);
void write_file(const std::string& path, const std::string& text);

}  // namespace test_support
