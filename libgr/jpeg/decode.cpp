#include "libgr/jpeg/jpeginfo.h"
#include "libgr/jpeg/libjpeg_bridge.h"
#include "libgr/jpeg/pixel_layout.h"
#include "libgr/jpeg/saved_segments.h"
#include "libutils/diagnostics.h"

namespace libgr {

namespace {

// The rows of an image as libjpeg delivers them.
struct rows_t {
    unsigned char* bottom;  // first byte of the picture's lowest row
    uint64_t stride;        // bytes
    uint32_t height;

    // Row y of the picture, from the top.
    [[nodiscard]] JSAMPROW row(uint32_t y) const { return bottom + stride * (height - 1 - y); }
};

bool make_picture(image2d_t& img, const jpeg_info_desc_t& layout, const jpeg_decompress_struct& info) {
    img.clear();
    img.desc = {layout.format, layout.type, layout.bits};
    img.window = {};
    img.window.width = info.image_width;
    img.window.height = info.image_height;
    return img.rowsize() <= memory_limit() / img.window.height && img.allocate() && img.holds_window();
}

// Takes in every scan of a file that has several, as far as the data goes.
void take_in_scans(decompressor_t& reader) {
    int status = 0;
    do {
        status = jpeg_consume_input(&reader.info);
        refuse_endless_scans(reinterpret_cast<j_common_ptr>(&reader.info));
        // Behind the last scan of a file cut short libjpeg would meet its beginning again and give up.
    } while (status != JPEG_REACHED_EOI && !(status == JPEG_SCAN_COMPLETED && reader.ran_out()));
    if (reader.ran_out() && reader.info.Ss == 0) {
        // Smoothing reads ahead of a scan of DC coefficients, into what isn't there.
        reader.info.do_block_smoothing = FALSE;
    }
}

// False when the compressed data ended early; of a file in one scan, the rows from there on are left alone.
bool decode_rows(decompressor_t& reader, const rows_t& rows) {
    jpeg_decompress_struct& info = reader.info;
    const bool several_scans = jpeg_has_multiple_scans(&info) != FALSE;
    info.buffered_image = several_scans ? TRUE : FALSE;
    jpeg_start_decompress(&info);
    if (several_scans) {
        take_in_scans(reader);
        jpeg_start_output(&info, info.input_scan_number);
    }
    if (uint64_t{info.output_width} * static_cast<unsigned>(info.output_components) > rows.stride ||
        info.output_height != rows.height) {
        ERREXIT(&info, JERR_WIDTH_OVERFLOW);
    }
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = rows.row(info.output_scanline);
        if (jpeg_read_scanlines(&info, &row, 1) == 0 || (!several_scans && reader.early_end())) {
            return false;
        }
    }
    if (several_scans) {
        return !reader.early_end() && !reader.ran_out();
    }
    jpeg_finish_decompress(&info);
    return true;
}

}  // namespace

bool jpeginfo_t::decompress(image2d_t& img, jpegdata_t& d, unsigned short /*align*/, bool /*border*/,
                            const color3ub_t& /*color*/) {
    markers.clear();
    decompressor_t reader(d);
    if (!reader.attempt([&] {
            reader.create();
            reader.keep_segments(0xFFFF);
            reader.read_header();
        })) {
        libutils::report(shown_name(d), ": jpeg decompress fail, stop.");
        return false;
    }
    const jpeg_decompress_struct& info = reader.info;
    width = info.image_width;
    height = info.image_height;
    const jpeg_info_desc_t* const layout = find_layout([&info](const jpeg_info_desc_t& row) {
        return row.components == info.num_components && row.color_space == info.out_color_space;
    });
    if (layout == nullptr || !make_picture(img, *layout, info)) {
        return false;
    }
    for (const auto* saved = info.marker_list; saved != nullptr; saved = saved->next) {
        const bool whole = saved->data_length != 0 && saved->data_length == saved->original_length;
        if (whole && !append_segment(markers, *saved)) {
            return false;
        }
    }
    const rows_t rows{img.pixel(0, 0), img.rowsize(), img.window.height};
    bool complete = false;
    if (!reader.attempt([&] { complete = decode_rows(reader, rows); })) {
        libutils::report(shown_name(d), ": jpeg decompress fail, but continue.");
    } else if (!complete) {
        libutils::report(shown_name(d), ": decompress fail.");
    }
    return true;
}

}  // namespace libgr
