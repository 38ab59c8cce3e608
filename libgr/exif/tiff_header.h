#pragma once

#include <memory>

#include "libgr/exif/exif_type.h"
#include "libutils/bytes/byte_order.h"
#include "libutils/bytes/ofsvector.h"

namespace libgr {

// The TIFF structure inside an EXIF segment: parse() fills the records, which are read directly afterwards. They share
// the buffer of the view that was set. Every offset is counted from the byte-order mark unless said otherwise. Nothing
// is read outside the view, whatever the file says; refusals are one line each on standard error.
class tiff_header_t : public libutils::bytes_t {
    using bytes_t = libutils::bytes_t;

  public:
    std::unique_ptr<libutils::byteorder> byteorder;  // of the file; null before parse()
    bytes_t ifd_0th;
    ExifType::tag_0th_ifd tag_0th_ifd;
    bytes_t ifd_exif;
    ExifType::tag_exif_ifd tag_exif_ifd;
    bytes_t ifd_gps;
    ExifType::tag_gps_ifd tag_gps_ifd;
    bytes_t ifd_1st;
    ExifType::tag_1st_ifd tag_1st_ifd;
    bytes_t thumbnail;  // the JPEG thumbnail of IFD1, empty without one
    ExifType::tag_olympus_ifd tag_olympus_ifd;
    ExifType::tag_olympus3_equipment_ifd tag_olympus3_equipment_ifd;
    ExifType::tag_olympus3_camerasettings_ifd tag_olympus3_camerasettings_ifd;
    ExifType::tag_olympus3_focusinfo_ifd tag_olympus3_focusinfo_ifd;
    ExifType::tag_pentax5_ifd tag_pentax5_ifd;

    void set_tiff_buffer(const bytes_t& tiff);

    // False when the structure can't be read; the records then hold what was read before.
    [[nodiscard]] bool parse();

    // The first step of it: the byte order and `ifd_0th`, for who walks that directory alone.
    [[nodiscard]] bool find_0th_ifd();

    // Readers of one directory; `ifd` starts at its entry count.
    [[nodiscard]] bool parse_0th_ifd(bytes_t& ifd);
    [[nodiscard]] bool parse_1st_ifd(bytes_t& ifd);
    [[nodiscard]] bool parse_exif_ifd(bytes_t& ifd);
    [[nodiscard]] bool parse_gps_ifd(bytes_t& ifd);

    // Readers of maker notes. The older Olympus layout counts offsets from the TIFF structure's first byte, the others
    // from the maker note's.
    [[nodiscard]] bool parse_olympus_ifd(bytes_t& ifd);
    [[nodiscard]] bool parse_olympus3_ifd(bytes_t& ifd, bytes_t& makernote);
    [[nodiscard]] bool parse_olympus3_equipment_ifd(bytes_t& ifd, bytes_t& makernote);
    [[nodiscard]] bool parse_olympus3_camerasettings_ifd(bytes_t& ifd, bytes_t& makernote);
    [[nodiscard]] bool parse_olympus3_focusinfo_ifd(bytes_t& ifd, bytes_t& makernote);
    [[nodiscard]] bool parse_pentax5_ifd(bytes_t& ifd, bytes_t& makernote);

    [[nodiscard]] const libutils::byteorder& order() const;  // little-endian before parse()
    [[nodiscard]] bool is_intel() const;
    [[nodiscard]] bool is_motorola() const;
    void byteorderclear();

    // Empties every record and drops every view.
    void clear() override;

  private:
    [[nodiscard]] bool read_byteorder_mark();
    void clear_records();

    // Steps after the entries of IFD0, from the offsets and the maker note found there; true without one.
    [[nodiscard]] bool read_exif_ifd();
    [[nodiscard]] bool read_gps_ifd();
    [[nodiscard]] bool read_maker_note();

    // Follows the link at `link` to IFD1, where the thumbnail stands.
    void read_1st_ifd(uint64_t link);
};

}  // namespace libgr
