#include "widgets/thumbnails.h"

#include <algorithm>
#include <iostream>

#include "album/album_layout.h"
#include "album/sizes/jpeg_files.h"
#include "libgr/image/pixel_operations.h"
#include "libgr/jpeg/jpeginfo.h"
#include "libutils/diagnostics.h"
#include "settings/settings.h"
#include "shooting_data/photo_header.h"
#include "talolib/option.h"

namespace taloram {

namespace {

bool decode(libgr::image2d_t& image, libgr::jpegdata_t& data, const std::string& path, const char* failure) {
    libgr::jpeginfo_t info;
    const bool decoded = info.decompress(image, data, 0, false, libgr::color3ub_t());
    if (!decoded) {
        libutils::report(path, failure);
    }
    return decoded;
}

bool turn(libgr::image2d_t& image, unsigned long count, const std::string& path) {
    if (count == 0) {
        return true;
    }
    libgr::image2d_t turned;
    if (!libgr::rotate(count, turned, image)) {
        libutils::report(path, ": rotate() failed.");
        return false;
    }
    image = turned;
    return true;
}

// A picture that can't be halved stays as large as it is.
void halve_to_preview(libgr::image2d_t& image) {
    constexpr uint64_t part = 4;  // of the reduced size's sides
    const auto too_large = [&] {
        return image.window.width > g_global.shrink_width / part || image.window.height > g_global.shrink_height / part;
    };
    while (image.window.width != 0 && image.window.height != 0 && too_large() && libgr::scaledown(image, image)) {
    }
}

void copy_row(guint8* to, const unsigned char* from, uint32_t width, bool gray) {
    constexpr uint32_t samples = 3;
    if (!gray) {
        std::copy_n(from, samples * width, to);
        return;
    }
    for (uint32_t x = 0; x < width; ++x) {
        to = std::fill_n(to, samples, from[x]);
    }
}

}  // namespace

bool load_thumbnail(libgr::image2d_t& image, const std::string& path) {
    libgr::jpegdata_t data;
    if (!is_photo(path) || !load_jpeg_file(data, path, path)) {
        return false;
    }
    photo_header_t header;
    if (!read_photo_header(header, data)) {
        libutils::report(path, ": jpeginfo analyze_markers() failed.");
        return false;
    }
    read_exif(header);
    if (!header.thumbnail.empty()) {
        if (header.orientation_value) {
            talolib::trace(std::cerr, "orientation: ", *header.orientation_value);
        }
        data.setvector(header.thumbnail, path.c_str());
        return decode(image, data, path, ": thumbnail decompress() failed.") &&
               turn(image, quarter_turns(header.orientation()), path);
    }
    if (!decode(image, data, path,
                header.app1().empty() ? ": thumbnail decompress() failed." : ": original decompress() failed.")) {
        return false;
    }
    halve_to_preview(image);
    return true;
}

bool load_jpeg(libgr::image2d_t& image, const std::string& path) {
    libgr::jpegdata_t data;
    return is_photo(path) && load_jpeg_file(data, path, path) &&
           decode(image, data, path, ": thumbnail decompress() failed.");
}

bool load_exifthumbnail_or_thumbdir(libgr::image2d_t& image, const std::string& album, const std::string& name) {
    if (const std::string thumb = thumb_path(album, name); is_exist(thumb)) {
        return load_jpeg(image, thumb);
    }
    const std::string level0 = entry_path(entry_path(album, level_name(0)), name);
    return load_thumbnail(image, is_exist(level0) ? level0 : original_path(album, name));
}

Glib::RefPtr<Gdk::Pixbuf> convert_to_pixbuf(const libgr::image2d_t& image) {
    const libgr::image_window2d_t& window = image.window;
    const bool gray = image.desc.format == libgr::IMAGE_FORMAT_GRAYSCALE;
    const bool shown = (gray || image.desc.format == libgr::IMAGE_FORMAT_RGB) &&
                       image.desc.type == libgr::IMAGE_TYPE_UINT && image.desc.bits == libgr::IMAGE_BITS_8;
    constexpr uint32_t longest_side = 65535;  // of a JPEG picture, ITU-T T.81 B.2.2
    if (!shown || window.width == 0 || window.height == 0 || window.width > longest_side ||
        window.height > longest_side || !image.holds_window()) {
        return {};
    }
    auto pixels = Gdk::Pixbuf::create(Gdk::COLORSPACE_RGB, false, 8, static_cast<int>(window.width),
                                      static_cast<int>(window.height));
    if (!pixels) {
        return {};
    }
    const auto stride = static_cast<size_t>(pixels->get_rowstride());
    for (uint32_t y = 0; y < window.height; ++y) {
        // The picture's rows lie bottom-up, the toolkit's top-down.
        copy_row(pixels->get_pixels() + stride * y, image.pixel(0, window.height - 1 - y), window.width, gray);
    }
    return pixels;
}

Glib::RefPtr<Gdk::Pixbuf> fit_into(const Glib::RefPtr<Gdk::Pixbuf>& pixels, int width, int height) {
    const double scale =
        std::min(static_cast<double>(width) / pixels->get_width(), static_cast<double>(height) / pixels->get_height());
    if (scale >= 1) {
        return pixels;
    }
    const auto scaled = [scale](int length) { return std::max(1, static_cast<int>(length * scale)); };
    return pixels->scale_simple(scaled(pixels->get_width()), scaled(pixels->get_height()), Gdk::INTERP_BILINEAR);
}

}  // namespace taloram
