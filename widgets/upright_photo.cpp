#include "widgets/upright_photo.h"

#include <utility>

#include "toolkit/upright_pixels.h"
#include "widgets/thumbnails.h"

namespace taloram {

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

}  // namespace taloram
