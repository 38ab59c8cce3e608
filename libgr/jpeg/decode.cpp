#include <limits>

#include "libgr/jpeg/jpeginfo.h"
#include "libgr/jpeg/libjpeg_bridge.h"
#include "libgr/jpeg/pixel_layout.h"
#include "libgr/jpeg/saved_segments.h"
#include "libutils/diagnostics.h"

namespace libgr {

namespace {

constexpr int all_scans = std::numeric_limits<int>::max();

// The rows of an image as libjpeg delivers them.
struct rows_t {
    unsigned char* bottom;  // first byte of the picture's lowest row
    uint64_t stride;        // bytes
    uint32_t height;

    // Row y of the picture, from the top.
    [[nodiscard]] JSAMPROW row(uint32_t y) const { return bottom + stride * (height - 1 - y); }
};

bool make_picture(image2d_t& img, const jpeg_info_desc_t& layout, decompressor_t& reader) {
    img.clear();
    img.desc = {layout.format, layout.type, layout.bits};
    img.window = {};
    img.window.width = reader.info.output_width;
    img.window.height = reader.info.output_height;
    return reader.set_aside(img.rowsize() * img.window.height) && img.allocate() && img.holds_window();
}

struct outcome_t {
    int scans = 0;          // taken in whole, of a file in several scans
    bool complete = false;  // the compressed data did not end early
};

// Takes in the first scans of a file that has several, as far as the data goes.
void take_in_scans(decompressor_t& reader, int wanted, outcome_t& outcome) {
    jpeg_decompress_struct& info = reader.info;
    int status = 0;
    // After the last scan of a file cut short libjpeg would meet its beginning again and give up.
    while (status != JPEG_REACHED_EOI && outcome.scans < wanted &&
           !(status == JPEG_SCAN_COMPLETED && reader.ran_out())) {
        status = jpeg_consume_input(&info);
        refuse_endless_scans(reinterpret_cast<j_common_ptr>(&info));
        outcome.scans += status == JPEG_SCAN_COMPLETED ? 1 : 0;
    }
    outcome.complete = status == JPEG_REACHED_EOI && !reader.early_end();
    if (status != JPEG_REACHED_EOI && info.Ss == 0) {
        // Smoothing reads on after a scan of DC coefficients.
        info.do_block_smoothing = FALSE;
    }
}

// Decodes row by row. Of a file in one scan whose compressed data ends early, the rows from there on are left alone;
// what a damaged restart interval lacks libjpeg fills with gray.
void decode_rows(decompressor_t& reader, const rows_t& rows, int wanted_scans, outcome_t& outcome) {
    jpeg_decompress_struct& info = reader.info;
    const bool several_scans = jpeg_has_multiple_scans(&info) != FALSE;
    info.buffered_image = several_scans ? TRUE : FALSE;
    jpeg_start_decompress(&info);
    if (several_scans) {
        take_in_scans(reader, wanted_scans, outcome);
        jpeg_start_output(&info, info.input_scan_number);
    }
    if (uint64_t{info.output_width} * static_cast<unsigned>(info.output_components) > rows.stride ||
        info.output_height != rows.height) {
        ERREXIT(&info, JERR_WIDTH_OVERFLOW);
    }
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = rows.row(info.output_scanline);
        if (jpeg_read_scanlines(&info, &row, 1) == 0 || (!several_scans && reader.early_end())) {
            return;
        }
    }
    if (!several_scans) {
        jpeg_finish_decompress(&info);
        outcome.complete = true;
    }
}

void open_file(decompressor_t& reader, unsigned eighths) {
    reader.open();
    reader.info.scale_num = eighths;
    reader.info.scale_denom = 8;
    jpeg_calc_output_dimensions(&reader.info);
}

// When a later scan can't be read at all, those before it still make a picture. What is wrong with the file has been
// written.
void decode_first_scans(const jpegdata_t& d, unsigned eighths, const rows_t& rows, int scans) {
    decompressor_t reader(d);
    reader.silence();
    (void)reader.attempt([&] {
        outcome_t outcome;
        open_file(reader, eighths);
        decode_rows(reader, rows, scans, outcome);
    });
}

}  // namespace

bool jpeginfo_t::decompress(image2d_t& img, jpegdata_t& d, unsigned short /*align*/, bool /*border*/,
                            const color3ub_t& /*color*/) {
    return decompress_scaled(img, d, 8);
}

bool jpeginfo_t::decompress_scaled(image2d_t& img, jpegdata_t& d, unsigned eighths) {
    markers.clear();
    damaged = true;
    decompressor_t reader(d);
    if (!reader.attempt([&] { open_file(reader, eighths); })) {
        libutils::report(shown_name(d), ": jpeg decompress fail, stop.");
        return false;
    }
    const jpeg_decompress_struct& info = reader.info;
    width = info.image_width;
    height = info.image_height;
    const jpeg_info_desc_t* const layout = find_layout([&info](const jpeg_info_desc_t& row) {
        return row.components == info.num_components && row.color_space == info.out_color_space;
    });
    if (layout == nullptr || !make_picture(img, *layout, reader)) {
        return false;
    }
    for (const auto* saved = info.marker_list; saved != nullptr; saved = saved->next) {
        if (is_carried_over(*saved) && !append_segment(markers, *saved)) {
            return false;
        }
    }
    const long header_warnings = reader.warnings();
    const rows_t rows{img.pixel(0, 0), img.rowsize(), img.window.height};
    outcome_t outcome;
    if (!reader.attempt([&] { decode_rows(reader, rows, all_scans, outcome); })) {
        reader.close();
        if (outcome.scans > 0) {
            decode_first_scans(d, eighths, rows, outcome.scans);
        }
        if (!d.is_intact()) {
            libutils::report(shown_name(d), ": jpeg decompress fail, stop.");
            return false;
        }
        libutils::report(shown_name(d), ": jpeg decompress fail, but continue.");
    } else if (!outcome.complete) {
        libutils::report(shown_name(d), ": decompress fail.");
    } else {
        damaged = reader.warnings() != header_warnings;
    }
    return true;
}

}  // namespace libgr
