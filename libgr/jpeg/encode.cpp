#include <algorithm>
#include <array>

#include "libgr/jpeg/encoding.h"
#include "libgr/jpeg/jpeginfo.h"
#include "libgr/jpeg/libjpeg_bridge.h"
#include "libgr/jpeg/pixel_layout.h"

namespace libgr {

namespace {

bool is_writable(const jpeginfo_t::marker_t& segment) {
    return segment.data.size() <= max_segment_bytes;
}

void write_rows(jpeg_compress_struct& info, const image2d_t& img) {
    std::array<JSAMPROW, 16> rows{};
    while (info.next_scanline < info.image_height) {
        const auto count = std::min<uint32_t>(rows.size(), info.image_height - info.next_scanline);
        for (uint32_t i = 0; i < count; ++i) {
            // libjpeg's interface has no const; it only reads these.
            rows[i] = const_cast<JSAMPROW>(img.pixel(0, info.image_height - 1 - info.next_scanline - i));
        }
        jpeg_write_scanlines(&info, rows.data(), count);
    }
}

void write_file(compressor_t& writer, const image2d_t& img, const jpeg_info_desc_t& layout,
                const std::list<jpeginfo_t::marker_t>& segments, int quality, bool force_baseline) {
    writer.create();
    jpeg_compress_struct& info = writer.info;
    set_up_encoder(
        info, {img.window.width, img.window.height, layout.color_space, layout.components, quality, force_baseline});
    jpeg_start_compress(&info, TRUE);
    for (const jpeginfo_t::marker_t& segment : segments) {
        jpeg_write_marker(&info, segment.marker, segment.data.begin(), static_cast<unsigned>(segment.data.size()));
    }
    write_rows(info, img);
    jpeg_finish_compress(&info);
}

}  // namespace

void set_up_encoder(jpeg_compress_struct& info, const encoding_t& encoding) {
    info.image_width = encoding.width;
    info.image_height = encoding.height;
    info.in_color_space = encoding.color_space;
    info.input_components = encoding.components;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, std::clamp(encoding.quality, 0, 100), encoding.force_baseline ? TRUE : FALSE);
}

bool jpeginfo_t::compress(jpegdata_t& out, const image2d_t& img, int quality, bool force_baseline) {
    out.clear();
    const jpeg_info_desc_t* const layout = find_layout([&img](const jpeg_info_desc_t& row) {
        return img.desc == image_desc_t{row.format, row.type, row.bits};
    });
    const auto [shorter, longer] = std::minmax(img.window.width, img.window.height);
    if (layout == nullptr || shorter == 0 || longer > max_picture_side || !img.holds_window() ||
        !std::all_of(markers.begin(), markers.end(), is_writable)) {
        return false;
    }
    compressor_t writer(out);
    if (!writer.attempt([&] { write_file(writer, img, *layout, markers, quality, force_baseline); })) {
        out.clear();
        return false;
    }
    return true;
}

}  // namespace libgr
