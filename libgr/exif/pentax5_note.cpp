#include "libgr/exif/ifd_fields.h"
#include "libgr/exif/tiff_header.h"

namespace libgr {

namespace {

using record_t = ExifType::tag_pentax5_ifd;
constexpr ifd_field_t<record_t> fields[] = {
    {0x000D, &record_t::focus_mode},
    {0x0010, &record_t::focus_position},
    {0x0019, &record_t::white_balance},
    {0x001A, &record_t::white_balance_mode},
};

}  // namespace

bool tiff_header_t::parse_pentax5_ifd(bytes_t& ifd, bytes_t& makernote) {
    return read_ifd({ifd, makernote, order(), ifd_source_t::maker_note, "pentax5 ifd: "}, fields, tag_pentax5_ifd);
}

}  // namespace libgr
