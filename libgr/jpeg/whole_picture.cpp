#include "libgr/jpeg/whole_picture.h"

#include "libgr/jpeg/libjpeg_bridge.h"

namespace libgr {

bool is_whole_picture(const jpegdata_t& data) {
    decompressor_t reader(data);
    reader.silence();
    jpeg_decompress_struct& info = reader.info;
    if (!reader.attempt([&] {
            reader.create();
            reader.read_header();
            reader.refuse_oversized();
            // All data is read, but few pixels are made.
            info.scale_num = 1;
            info.scale_denom = 8;
            jpeg_calc_output_dimensions(&info);
        })) {
        return false;
    }
    const long of_header = reader.warnings();
    libutils::bytes_t memory;
    if (!memory.resize(size_t{info.output_width} * static_cast<unsigned>(info.output_components))) {
        return false;
    }
    JSAMPROW row = memory.begin();
    return reader.attempt([&] {
        jpeg_start_decompress(&info);
        while (info.output_scanline < info.output_height && reader.warnings() == of_header) {
            if (jpeg_read_scanlines(&info, &row, 1) == 0) {
                return;
            }
        }
    }) && info.output_scanline == info.output_height &&
           reader.warnings() == of_header;
}

}  // namespace libgr
