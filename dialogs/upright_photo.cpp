#include "dialogs/upright_photo.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "album/album_layout.h"
#include "album/reduced_sizes.h"
#include "dialogs/thumbnails.h"
#include "libgr/exif/app1_marker.h"
#include "libgr/image/pixel_operations.h"
#include "libgr/jpeg/jpegdata.h"
#include "libgr/jpeg/jpeginfo.h"
#include "libutils/diagnostics.h"
#include "shooting_data/orientation.h"
#include "toolkit/upright_pixels.h"

namespace taloram {

namespace {

struct exif_facts_t {
    unsigned long orientation = 1;
    bool has_thumbnail = false;
};

exif_facts_t read_exif(const libgr::jpeginfo_t& info) {
    exif_facts_t facts;
    const libutils::bytes_t segment = info.get_marker(libgr::jpeginfo_t::num_APP1);
    if (segment.empty()) {
        return facts;
    }
    libgr::app1_marker_t app1;
    app1.set_app1_buffer(segment);
    facts.has_thumbnail = app1.parse() && !app1.tiff_header.thumbnail.empty();
    facts.orientation = picture_orientation(app1.tiff_header);
    return facts;
}

bool read_head(libgr::jpeginfo_t& info, const std::string& path) {
    libgr::jpegdata_t data;
    return data.load(path.c_str()) && info.analyze_markers(data) && info.width != 0 && info.height != 0;
}

std::optional<photo_size_t> read_size(const std::string& path) {
    libgr::jpeginfo_t info;
    if (!read_head(info, path)) {
        return std::nullopt;
    }
    photo_size_t size{path, info.width, info.height, read_exif(info).orientation};
    if (swaps_sides(size.orientation)) {
        std::swap(size.width, size.height);
    }
    return size;
}

// Whether the engine made the thumbnail from the picture, for want of the camera's. Such a one is not turned by the
// Orientation that the sizes carry.
bool has_made_thumbnail(const std::string& album, const std::string& name) {
    libgr::jpeginfo_t info;
    return read_head(info, original_path(album, name)) && !read_exif(info).has_thumbnail;
}

}  // namespace

std::vector<photo_size_t> list_photo_sizes(const std::string& album, const std::string& name) {
    std::vector<photo_size_t> sizes;
    const auto append = [&sizes](const std::string& path) {
        const std::optional<photo_size_t> size = is_exist(path) ? read_size(path) : std::nullopt;
        if (size && std::max(size->width, size->height) <= longest_surface_side) {
            sizes.push_back(*size);
        }
    };
    for (unsigned long k = 0; k <= highest_top_level; ++k) {
        append(entry_path(entry_path(album, level_name(k)), name));
    }
    for (const std::string& substitute : {original_path(album, name), thumb_path(album, name)}) {
        if (sizes.empty()) {
            append(substitute);
        }
    }
    std::stable_sort(sizes.begin(), sizes.end(),
                     [](const photo_size_t& a, const photo_size_t& b) { return a.width < b.width; });
    return sizes;
}

Cairo::RefPtr<Cairo::ImageSurface> load_upright(const photo_size_t& size) {
    libgr::image2d_t image;
    if (!load_jpeg(image, size.path)) {
        return {};
    }
    plain_pixels_t pixels;
    static_cast<void>(make_upright(pixels, image, size.orientation));
    image.clear();
    return make_surface(std::move(pixels));
}

bool turn_photo(const std::string& album, const std::string& name, unsigned long count) {
    struct turn_t {
        std::string path;
        unsigned long count;
    };
    std::vector<turn_t> turns;
    unsigned long carried = 0;  // turn that the sizes ask for by their segments
    const std::vector<std::string> dirs = level_directories(album, getshrinklevel(album, name));
    for (const std::string& dir : dirs) {
        const std::optional<photo_size_t> size = read_size(entry_path(dir, name));
        if (!size || is_mirrored(size->orientation)) {
            libutils::report(entry_path(dir, name), size ? ": is mirrored" : ": can't be read",
                             ", nothing was turned.");
            return false;
        }
        const unsigned long turn = libgr::mixorientandrightrotatecount(0, size->orientation);
        carried = dir == dirs.front() ? turn : carried;
        turns.push_back({size->path, (count + turn) % 4});
    }
    if (carried == 0) {
        return rotateallsize(album, name, count);
    }
    // A turned file has no segments any more, so the turn that they asked for must become part of its pixels.
    if (has_made_thumbnail(album, name)) {
        turns.back().count = (count + carried) % 4;
    }
    return std::all_of(turns.begin(), turns.end(),
                       [](const turn_t& turn) { return rotatejpeg(turn.path, turn.path, turn.count); });
}

}  // namespace taloram
