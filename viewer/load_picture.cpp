#include "viewer/load_picture.h"

#include <sys/stat.h>

#include <cairomm/context.h>
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <exception>
#include <utility>

#include "libgr/jpeg/jpeginfo.h"
#include "settings/message.h"
#include "shooting_data/exif_summary.h"
#include "shooting_data/photo_header.h"

namespace talovue {

namespace {

constexpr unsigned whole = 8;                // eighths
constexpr double most_pixels = 128'000'000;  // 512 MB

double fitting_zoom(const loaded_picture_t& picture, const picture_request_t& request) {
    return std::min({1.0, request.width / picture.width, request.height / picture.height});
}

// The smallest scale that libjpeg decodes at and that is enough for `zoom`.
unsigned wanted_eighths(const loaded_picture_t& picture, double zoom) {
    const double room =
        std::min(std::sqrt(most_pixels / (picture.width * picture.height)),
                 static_cast<double>(taloram::longest_surface_side) / std::max(picture.width, picture.height));
    const auto most = static_cast<unsigned>(std::clamp(std::floor(whole * room), 1.0, double{whole}));
    return std::min(most, static_cast<unsigned>(std::clamp(std::ceil(whole * zoom), 1.0, double{whole})));
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

std::string load(loaded_picture_t& picture, const picture_request_t& request) {
    if (std::string reason = reason_not_to_open(request.path, picture.file_bytes); !reason.empty()) {
        return reason;
    }
    libgr::jpegdata_t data;
    errno = 0;
    if (!data.load(request.path.c_str())) {
        return errno == 0 || errno == EINVAL ? taloram::getmsg(taloram::msg_not_a_photo) : std::strerror(errno);
    }
    taloram::photo_header_t header;
    if (!taloram::read_photo_header(header, data) || header.width == 0 || header.height == 0) {
        return taloram::getmsg(taloram::msg_not_a_photo);
    }
    taloram::read_exif(header);
    picture.width = static_cast<double>(header.width);
    picture.height = static_cast<double>(header.height);
    if (taloram::swaps_sides(header.orientation())) {
        std::swap(picture.width, picture.height);
    }
    const double fitting = fitting_zoom(picture, request);
    libgr::jpeginfo_t info;
    libgr::image2d_t image;
    const unsigned eighths = wanted_eighths(picture, request.zoom > 0 ? request.zoom : fitting);
    if (!info.decompress_scaled(image, data, eighths) ||
        !taloram::make_upright(picture.pixels, image, header.orientation())) {
        return taloram::getmsg(data.is_intact() ? taloram::msg_photo_too_much : taloram::msg_not_a_photo);
    }
    image.clear();
    if (request.zoom > 0) {
        return "";
    }
    const auto fitted = [fitting](double side) { return std::max(1, static_cast<int>(std::lround(side * fitting))); };
    if (!scale_down(picture.pixels, fitted(picture.width), fitted(picture.height))) {
        return taloram::getmsg(taloram::msg_photo_too_much);
    }
    picture.summary = taloram::plain_summary(request.path);
    return "";
}

}  // namespace

loaded_picture_t load_picture(const picture_request_t& request) {
    loaded_picture_t picture;
    try {
        picture.failure = load(picture, request);
    } catch (const std::exception&) {
        picture.failure = taloram::getmsg(taloram::msg_photo_too_much);
    }
    if (!picture.failure.empty()) {
        picture.pixels = {};
    }
    return picture;
}

}  // namespace talovue
