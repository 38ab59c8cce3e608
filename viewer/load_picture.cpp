#include "viewer/load_picture.h"

#include <sys/stat.h>

#include <cairomm/context.h>
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <exception>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "album/album_layout.h"
#include "album/sizes/photo_sizes.h"
#include "libgr/jpeg/jpeginfo.h"
#include "messages/message.h"
#include "shooting_data/exif_summary.h"

namespace talovue {

namespace {

constexpr unsigned whole = 8;                // eighths
constexpr double most_pixels = 128'000'000;  // 512 MB

double fitting_zoom(const loaded_picture_t& picture, const picture_request_t& request) {
    return std::min({1.0, request.width / picture.width, request.height / picture.height});
}

// The smallest scale that libjpeg decodes at and that gives a file `width` pixels across.
unsigned wanted_eighths(const taloram::photo_size_t& file, double width) {
    const auto file_width = static_cast<double>(file.width);
    const auto file_height = static_cast<double>(file.height);
    const double room =
        std::min(std::sqrt(most_pixels / (file_width * file_height)),
                 static_cast<double>(taloram::longest_surface_side) / std::max(file_width, file_height));
    const auto most = static_cast<unsigned>(std::clamp(std::floor(whole * room), 1.0, double{whole}));
    return std::min(most, static_cast<unsigned>(std::clamp(std::ceil(whole * width / file_width), 1.0, double{whole})));
}

// In the loader's own thread: drawing here leaves the window free, and what comes out needs no more of it.
bool scale_down(taloram::plain_pixels_t& pixels, int width, int height) {
    if (width >= pixels.width && height >= pixels.height) {
        return true;
    }
    taloram::plain_pixels_t scaled;
    const double across = static_cast<double>(width) / pixels.width;
    const double down = static_cast<double>(height) / pixels.height;
    const auto source = taloram::make_surface(std::move(pixels));
    if (!source || !scaled.allocate(width, height)) {
        return false;
    }
    const auto target =
        Cairo::ImageSurface::create(reinterpret_cast<unsigned char*>(scaled.rows.get()), Cairo::FORMAT_RGB24, width,
                                    height, width * static_cast<int>(sizeof(uint32_t)));
    const auto pattern = Cairo::SurfacePattern::create(source);
    pattern->set_filter(Cairo::FILTER_GOOD);
    pattern->set_extend(Cairo::EXTEND_PAD);
    const auto context = Cairo::Context::create(target);
    context->scale(across, down);
    context->set_source(pattern);
    context->set_operator(Cairo::OPERATOR_SOURCE);
    context->paint();
    target->finish();
    pixels = std::move(scaled);
    return true;
}

// "" when the file can be opened without a wait: no pipe, no device.
std::string reason_not_to_open(const std::string& path, uint64_t& bytes) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return std::strerror(errno);
    }
    if (!S_ISREG(status.st_mode)) {
        return taloram::getmsg(taloram::msg_not_a_photo);
    }
    bytes = static_cast<uint64_t>(status.st_size);
    return "";
}

std::string open_file(libgr::jpegdata_t& data, const std::string& path) {
    const std::error_code failure = load_file(data, path);
    if (!failure) {
        return "";
    }
    const bool is_refused = failure == std::errc::io_error || failure == std::errc::invalid_argument;
    return is_refused ? taloram::getmsg(taloram::msg_not_a_photo) : failure.message();
}

void set_full_size(loaded_picture_t& picture, const taloram::photo_size_t& size) {
    picture.width = static_cast<double>(size.width);
    picture.height = static_cast<double>(size.height);
}

double wanted_width(const loaded_picture_t& picture, const picture_request_t& request) {
    return picture.width * (request.zoom > 0 ? request.zoom : fitting_zoom(picture, request));
}

std::string decode(loaded_picture_t& picture, const picture_request_t& request, const taloram::photo_size_t& file,
                   libgr::jpegdata_t& data) {
    libgr::jpeginfo_t info;
    libgr::image2d_t image;
    if (!info.decompress_scaled(image, data, wanted_eighths(file, wanted_width(picture, request))) ||
        !taloram::make_upright(picture.pixels, image, file.orientation)) {
        return taloram::getmsg(data.is_intact() ? taloram::msg_photo_too_much : taloram::msg_not_a_photo);
    }
    picture.damaged = info.damaged;
    image.clear();
    if (request.zoom > 0) {
        return "";
    }
    const double fitting = fitting_zoom(picture, request);
    const auto fitted = [fitting](double side) { return std::max(1, static_cast<int>(std::lround(side * fitting))); };
    if (!scale_down(picture.pixels, fitted(picture.width), fitted(picture.height))) {
        return taloram::getmsg(taloram::msg_photo_too_much);
    }
    const std::string& path = request.picture.path;
    picture.summary = taloram::plain_summary(taloram::is_exist(path) ? path : file.path);
    return "";
}

std::string load_file(loaded_picture_t& picture, const picture_request_t& request) {
    const std::string& path = request.picture.path;
    if (std::string reason = reason_not_to_open(path, picture.file_bytes); !reason.empty()) {
        return reason;
    }
    libgr::jpegdata_t data;
    if (std::string reason = open_file(data, path); !reason.empty()) {
        return reason;
    }
    const std::optional<taloram::photo_size_t> size = taloram::read_photo_size(path, data);
    if (!size) {
        return taloram::getmsg(taloram::msg_not_a_photo);
    }
    set_full_size(picture, *size);
    return decode(picture, request, *size, data);
}

// Another size of a photograph with one broken file is still worth seeing.
std::string load_from_album(loaded_picture_t& picture, const picture_request_t& request) {
    constexpr uint64_t any_side = std::numeric_limits<uint64_t>::max();
    std::vector<taloram::photo_size_t> sizes =
        taloram::list_photo_sizes(request.picture.album, request.picture.name(), any_side);
    if (sizes.empty()) {
        std::string reason = reason_not_to_open(request.picture.path, picture.file_bytes);
        return reason.empty() ? taloram::getmsg(taloram::msg_not_a_photo) : reason;
    }
    set_full_size(picture, sizes.back());
    static_cast<void>(reason_not_to_open(sizes.back().path, picture.file_bytes));
    std::string first_reason;
    while (!sizes.empty()) {
        const size_t wanted = taloram::wanted_size(sizes, wanted_width(picture, request));
        libgr::jpegdata_t data;
        std::string reason = open_file(data, sizes[wanted].path);
        if (reason.empty()) {
            reason = decode(picture, request, sizes[wanted], data);
        }
        if (reason.empty()) {
            return "";
        }
        first_reason = first_reason.empty() ? std::move(reason) : first_reason;
        sizes.erase(sizes.begin() + static_cast<std::ptrdiff_t>(wanted));
    }
    return first_reason;
}

}  // namespace

loaded_picture_t load_picture(const picture_request_t& request) {
    loaded_picture_t picture;
    try {
        picture.failure =
            request.picture.album.empty() ? load_file(picture, request) : load_from_album(picture, request);
    } catch (const std::exception&) {
        picture.failure = taloram::getmsg(taloram::msg_photo_too_much);
    }
    if (!picture.failure.empty()) {
        picture.pixels = {};
    }
    return picture;
}

}  // namespace talovue
