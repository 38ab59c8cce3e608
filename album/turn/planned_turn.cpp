#include "album/turn/planned_turn.h"

#include <array>
#include <cstdlib>
#include <limits>

#include "album/album_layout.h"
#include "album/sizes/jpeg_files.h"
#include "libgr/image/pixel_operations.h"
#include "shooting_data/photo_header.h"

namespace taloram {

namespace {

// The original as the camera stored it: `picture` is its thumbnail or, without one, itself at an eighth of the size.
bool view_original(photo_header_t& header, libgr::image2d_t& picture, const std::string& path) {
    libgr::jpegdata_t data;
    if (!load_jpeg_file(data, path, path) || !read_photo_header(header, data)) {
        return false;
    }
    read_exif(header);
    const bool is_whole_picture = header.thumbnail.empty();
    if (!is_whole_picture) {
        data.setvector(header.thumbnail, path.c_str());
    }
    libgr::jpeginfo_t info;
    return info.decompress_scaled(picture, data, is_whole_picture ? 1 : 8);
}

// A picture in a few cells, alike for all sizes of a scene.
struct pattern_t {
    static constexpr uint32_t side = 8;

    int shape = 0;  // upright, square, lying: -1, 0, 1
    std::array<int, side * side> cells{};
};

pattern_t pattern_of(const libgr::image2d_t& image) {
    const uint32_t width = image.window.width;
    const uint32_t height = image.window.height;
    pattern_t pattern;
    pattern.shape = static_cast<int>(width > height) - static_cast<int>(width < height);
    const size_t samples = image.desc.format == libgr::IMAGE_FORMAT_GRAYSCALE ? 1 : 3;
    for (uint32_t i = 0; i < pattern.cells.size(); ++i) {
        const uint64_t column = i % pattern_t::side;
        const uint64_t row = i / pattern_t::side;
        uint64_t sum = 0;
        uint64_t count = 0;
        for (uint64_t y = row * height / pattern_t::side; y < (row + 1) * height / pattern_t::side; ++y) {
            const uint64_t end = (column + 1) * width / pattern_t::side;
            for (uint64_t x = column * width / pattern_t::side; x < end; ++x, count += samples) {
                const unsigned char* const pixel = image.pixel(static_cast<uint32_t>(x), static_cast<uint32_t>(y));
                for (size_t s = 0; s < samples; ++s) {
                    sum += pixel[s];
                }
            }
        }
        pattern.cells[i] = count == 0 ? 0 : static_cast<int>(sum / count);
    }
    return pattern;
}

long difference(const pattern_t& a, const pattern_t& b) {
    long sum = a.shape == b.shape ? 0 : std::numeric_limits<int>::max();
    for (size_t i = 0; i < a.cells.size(); ++i) {
        sum += std::abs(a.cells[i] - b.cells[i]);
    }
    return sum;
}

// The turn of `picture` that looks most like `shown`.
unsigned long find_turn(const libgr::image2d_t& picture, const libgr::image2d_t& shown) {
    const pattern_t wanted = pattern_of(shown);
    unsigned long best = 0;
    long least = std::numeric_limits<long>::max();
    for (unsigned long count = 0; count < 4; ++count) {
        libgr::image2d_t turned;
        if (!libgr::rotate(count, turned, picture)) {
            continue;
        }
        if (const long found = difference(pattern_of(turned), wanted); found < least) {
            least = found;
            best = count;
        }
    }
    return best;
}

}  // namespace

unsigned long planned_turn(const std::string& album, const std::string& name, unsigned long count) {
    photo_header_t original;
    libgr::image2d_t picture;
    if (count == 0 || !view_original(original, picture, original_path(album, name))) {
        return 0;
    }
    const unsigned long by_camera = quarter_turns(original.orientation());
    const unsigned long afterwards = original.orientation_value ? by_camera : count;
    // Without a thumbnail in the album what the original carries is shown.
    unsigned long now = original.thumbnail.empty() ? 0 : by_camera;
    libgr::jpegdata_t data;
    libgr::jpeginfo_t info;
    libgr::image2d_t shown;
    const std::string thumb = thumb_path(album, name);
    if (data.load(thumb.c_str()) && info.decompress(shown, data, 0, false, libgr::color3ub_t())) {
        now = find_turn(picture, shown);
    }
    return (afterwards + 4 - now) % 4;
}

}  // namespace taloram
