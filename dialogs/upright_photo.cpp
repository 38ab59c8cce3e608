#include "dialogs/upright_photo.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "album/album_layout.h"
#include "album/reduced_sizes.h"
#include "dialogs/thumbnails.h"
#include "libgr/image/image2d.h"
#include "libutils/diagnostics.h"
#include "shooting_data/photo_header.h"
#include "toolkit/upright_pixels.h"

namespace taloram {

namespace {

std::optional<photo_header_t> read_header(const std::string& path) {
    photo_header_t header;
    if (load_photo_header(header, path) != header_status_t::complete || header.width == 0 || header.height == 0) {
        return std::nullopt;
    }
    read_exif(header);
    return header;
}

std::optional<photo_size_t> read_size(const std::string& path) {
    const std::optional<photo_header_t> header = read_header(path);
    if (!header) {
        return std::nullopt;
    }
    photo_size_t size{path, header->width, header->height, header->orientation()};
    if (swaps_sides(size.orientation)) {
        std::swap(size.width, size.height);
    }
    return size;
}

// Whether the engine made the thumbnail from the picture, for want of the camera's. Such a one is not turned by the
// Orientation that the sizes carry.
bool has_made_thumbnail(const std::string& album, const std::string& name) {
    const std::optional<photo_header_t> header = read_header(original_path(album, name));
    return header && header->thumbnail.empty();
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
        const unsigned long turn = quarter_turns(size->orientation);
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
