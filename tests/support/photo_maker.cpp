#include "tests/support/photo_maker.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <jpeglib.h>  // needs <cstdio> before it

namespace test_support {
namespace {

using colour_t = std::array<int, 3>;

// `b`'s share is `part` of 4096.
colour_t mix(const colour_t& a, const colour_t& b, int part) {
    const int p = std::clamp(part, 0, 4096);
    return {a[0] + (b[0] - a[0]) * p / 4096, a[1] + (b[1] - a[1]) * p / 4096, a[2] + (b[2] - a[2]) * p / 4096};
}

// A smooth wave between -1024 and 1024 with a period of 4096.
int wave(int t) {
    const int half = t & 2047;
    const int height = half * (2048 - half) >> 10;
    return (t & 2048) != 0 ? -height : height;
}

// A bay with hills and the sun, the same on every machine: integer arithmetic alone. `seed` chooses weather and shapes.
colour_t scene(int x, int y, int width, int height, unsigned seed) {
    // Corners of the sky: top left, top right, horizon left, horizon right.
    constexpr colour_t skies[][4] = {{{{38, 92, 170}}, {{96, 140, 205}}, {{190, 220, 240}}, {{250, 230, 190}}},
                                     {{{52, 44, 110}}, {{120, 64, 130}}, {{250, 150, 90}}, {{255, 205, 110}}},
                                     {{{80, 150, 190}}, {{150, 160, 215}}, {{225, 235, 220}}, {{255, 215, 190}}}};
    const auto& sky = skies[seed % 3];
    const int u = x * 4096 / width;
    const int v = y * 4096 / height;
    const int phase = static_cast<int>(seed * 797 % 4096);
    const int horizon = 2200 + phase % 500;
    const colour_t glow = mix(sky[2], sky[3], u);
    colour_t colour = mix(mix(sky[0], sky[1], u), glow, v * 4096 / horizon);

    const int64_t right = x - width * (2400L + phase % 1200) / 4096;
    const int64_t down = y - height * (700L + phase % 700) / 4096;
    const int64_t radius = std::min(width, height) / 12 + 1;
    const int64_t distance = (right * right + down * down) * 256 / (radius * radius);  // 256 on the sun's edge
    colour = distance <= 256
                 ? colour_t{255, 244, 200}
                 : mix({255, 236, 180}, colour, static_cast<int>(2048 + std::min<int64_t>(distance, 4096) / 2));

    const int slope = 4096 - u;  // hills to the left, open sea to the right
    const int far = (700 + wave(u * 2 + phase) / 3 + wave(u * 5 + phase * 3) / 9) * slope / 4096;
    const int near = (360 + wave(u * 3 + phase * 5) / 5 + wave(u * 11 + phase) / 30) * (slope - 1000) / 3072;
    if (v > horizon) {
        colour =
            mix(mix(glow, {40, 120, 150}, 2600), {14, 60, 104}, (v - horizon) * 3 + wave(v * 24 + wave(u * 9)) / 5);
    } else if (v > horizon - near) {
        colour = mix({46, 84, 52}, {104, 128, 62}, (horizon - v) * 8);
    } else if (v > horizon - far) {
        colour = mix({84, 104, 140}, glow, (v - horizon + far) * 3);
    }
    const int sail = horizon + 500 - v;  // above the boat's deck
    if (sail > 0 && std::abs(u - 2900 + phase % 700) < (900 - sail) / 5) {
        colour = {250, 246, 236};
    }
    if (v > 3550 + wave(u / 2 + 1024 + phase / 4) / 4) {
        colour = mix({226, 200, 150}, {168, 128, 84}, u / 2 + (v - 3300) * 2);
    }
    auto noise = static_cast<uint32_t>(x) * 0x9E3779B1U ^ static_cast<uint32_t>(y) * 0x85EBCA77U ^ seed * 0xC2B2AE3DU;
    noise = (noise ^ noise >> 15) * 0x2C1B3CB3U;
    for (int& sample : colour) {
        sample = std::clamp(sample + static_cast<int>((noise >> 16) % 5) - 2, 0, 255);
    }
    return colour;
}

// Errors end the program with libjpeg's message; warnings are kept off standard error, which tests look at.
jpeg_error_mgr* errors() {
    static jpeg_error_mgr manager;
    jpeg_std_error(&manager);
    manager.emit_message = [](j_common_ptr, int) {};
    manager.error_exit = [](j_common_ptr info) {
        info->err->output_message(info);
        std::abort();
    };
    return &manager;
}

// The scene turned such that it stands upright when `orientation` is obeyed.
void write_scene(jpeg_compress_struct& info, unsigned seed, unsigned orientation) {
    const int right = static_cast<int>(info.image_width) - 1;
    const int bottom = static_cast<int>(info.image_height) - 1;
    blob_t row(3 * size_t{info.image_width});
    for (int y = 0; y <= bottom; ++y) {
        auto sample = row.begin();
        for (int x = 0; x <= right; ++x) {
            const colour_t colour = orientation == 3   ? scene(right - x, bottom - y, right + 1, bottom + 1, seed)
                                    : orientation == 6 ? scene(bottom - y, x, bottom + 1, right + 1, seed)
                                    : orientation == 8 ? scene(y, right - x, bottom + 1, right + 1, seed)
                                                       : scene(x, y, right + 1, bottom + 1, seed);
            sample = std::copy(colour.begin(), colour.end(), sample);
        }
        JSAMPROW rows[] = {row.data()};
        jpeg_write_scanlines(&info, rows, 1);
    }
}

blob_t encode(const photo_t& photo, unsigned orientation) {
    constexpr int luma[][2] = {{1, 1}, {2, 1}, {1, 2}, {2, 2}, {4, 1}, {1, 1}};  // Hi, Vi in the order of sampling_t
    jpeg_compress_struct info{};
    info.err = errors();
    jpeg_create_compress(&info);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &bytes, &size);
    info.image_width = photo.width;
    info.image_height = photo.height;
    info.input_components = 3;
    info.in_color_space = JCS_RGB;
    jpeg_set_defaults(&info);
    if (photo.sampling == sampling_t::gray) {
        jpeg_set_colorspace(&info, JCS_GRAYSCALE);
    }
    jpeg_set_quality(&info, photo.quality, TRUE);
    info.comp_info[0].h_samp_factor = luma[static_cast<size_t>(photo.sampling)][0];
    info.comp_info[0].v_samp_factor = luma[static_cast<size_t>(photo.sampling)][1];
    if (photo.progressive) {
        jpeg_simple_progression(&info);
    }
    info.restart_interval = photo.restart_interval;
    info.write_JFIF_header = photo.segments.empty() ? TRUE : FALSE;
    jpeg_start_compress(&info, TRUE);
    for (const segment_t& segment : photo.segments) {
        jpeg_write_marker(&info, segment.marker, segment.body.data(), static_cast<unsigned>(segment.body.size()));
    }
    write_scene(info, photo.seed, orientation);
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    const blob_t jpeg(bytes, bytes + size);
    std::free(bytes);
    return jpeg;
}

void open(jpeg_decompress_struct& info, const blob_t& jpeg) {
    info.err = errors();
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, const_cast<unsigned char*>(jpeg.data()), static_cast<unsigned long>(jpeg.size()));
    jpeg_read_header(&info, TRUE);
}

}  // namespace

blob_t make_jpeg(const photo_t& photo) {
    return encode(photo, 1);
}

blob_t make_camera_jpeg(const photo_t& photo, unsigned orientation, bool with_thumbnail) {
    const unsigned n = photo.seed % 50;
    const std::string time = "2024:07:14 1" + std::to_string(n / 10) + ":2" + std::to_string(n % 10) + ":08";
    using b = exif_builder_t;
    exif_builder_t exif;
    exif.text(b::ifd0, 0x010F, "Example Optical").text(b::ifd0, 0x0110, "EX-1").text(b::ifd0, 0x0132, time);
    if (orientation != 0) {
        exif.shorts(b::ifd0, 0x0112, {static_cast<uint16_t>(orientation)});
    }
    exif.rational(b::exif, 0x829A, 1, 60 + 20 * n).rational(b::exif, 0x829D, 28 + n, 10);  // exposure time, F number
    exif.shorts(b::exif, 0x8822, {2}).shorts(b::exif, 0x8827, {200});                      // program, ISO
    exif.text(b::exif, 0x9003, time).srational(b::exif, 0x9204, -1, 3);                    // original, bias
    exif.shorts(b::exif, 0x9207, {5}).shorts(b::exif, 0x9209, {16});                       // metering, flash
    exif.rational(b::exif, 0x920A, 140 + n, 10);                                           // focal length
    exif.shorts(b::exif, 0xA001, {1}).shorts(b::exif, 0xA403, {0});  // colour space, white balance
    exif.shorts(b::exif, 0xA405, {static_cast<uint16_t>(28 + n * 2)})
        .text(b::exif, 0xA434, "Example Zoom 14-64mm F2.8");
    if (with_thumbnail) {
        exif.thumbnail(encode({.width = 160, .height = 120, .quality = 80, .seed = photo.seed}, orientation));
    }
    photo_t whole = photo;
    whole.segments.insert(whole.segments.begin(), {JPEG_APP0 + 1, exif.app1()});
    return encode(whole, orientation);
}

pixels_t decode(const blob_t& jpeg) {
    jpeg_decompress_struct info{};
    open(info, jpeg);
    jpeg_start_decompress(&info);
    pixels_t pixels{info.output_width, info.output_height, static_cast<unsigned>(info.output_components), {}};
    const size_t stride = size_t{pixels.width} * pixels.channels;
    pixels.bytes.resize(stride * pixels.height);
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = pixels.bytes.data() + stride * info.output_scanline;
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_destroy_decompress(&info);
    return pixels;
}

coefficients_t read_coefficients(const blob_t& jpeg) {
    jpeg_decompress_struct info{};
    open(info, jpeg);
    jvirt_barray_ptr* const arrays = jpeg_read_coefficients(&info);
    coefficients_t all;
    for (int i = 0; i < info.num_components; ++i) {
        const jpeg_component_info& from = info.comp_info[i];
        auto& component = all.components.emplace_back();
        component.blocks_wide = from.width_in_blocks;
        component.blocks_high = from.height_in_blocks;
        for (unsigned y = 0; y < component.blocks_high; ++y) {
            const auto common = reinterpret_cast<j_common_ptr>(&info);
            const JBLOCKROW row = info.mem->access_virt_barray(common, arrays[i], y, 1, FALSE)[0];
            component.values.insert(component.values.end(), row[0], row[component.blocks_wide]);
        }
    }
    jpeg_destroy_decompress(&info);
    return all;
}

blob_t read_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return in ? blob_t(std::istreambuf_iterator<char>(in), {}) : throw std::runtime_error(path + ": can't be read");
}

void write_file(const std::string& path, const std::string& text) {
    if (!(std::ofstream(path, std::ios::binary) << text << std::flush)) {
        throw std::runtime_error(path + ": can't be written");
    }
}

void write_file(const std::string& path, const blob_t& bytes) {
    write_file(path, std::string(bytes.begin(), bytes.end()));
}

}  // namespace test_support
