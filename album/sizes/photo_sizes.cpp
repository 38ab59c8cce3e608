#include "album/sizes/photo_sizes.h"

#include <algorithm>
#include <utility>

#include "album/album_layout.h"
#include "shooting_data/photo_header.h"

namespace taloram {

std::optional<photo_size_t> read_photo_size(const std::string& path, libgr::jpegdata_t& data) {
    photo_header_t header;
    if (!read_photo_header(header, data) || header.width == 0 || header.height == 0) {
        return std::nullopt;
    }
    read_exif(header);
    photo_size_t size{path, header.width, header.height, header.orientation()};
    if (swaps_sides(size.orientation)) {
        std::swap(size.width, size.height);
    }
    return size;
}

size_t wanted_size(const std::vector<photo_size_t>& sizes, double width) {
    const auto found = std::find_if(sizes.begin(), sizes.end(), [width](const photo_size_t& size) {
        return static_cast<double>(size.width) + 1 >= width;
    });
    return std::min(static_cast<size_t>(found - sizes.begin()), sizes.size() - 1);
}

std::vector<photo_size_t> list_photo_sizes(const std::string& album, const std::string& name, uint64_t longest_side) {
    std::vector<photo_size_t> sizes;
    const auto append = [&](const std::string& path) {
        libgr::jpegdata_t data;
        const std::optional<photo_size_t> size =
            is_exist(path) && data.load(path.c_str()) ? read_photo_size(path, data) : std::nullopt;
        if (size && std::max(size->width, size->height) <= longest_side) {
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

}  // namespace taloram
