#pragma once

#include <cairomm/surface.h>

#include "album/sizes/photo_sizes.h"

namespace taloram {

// Decodes one size, right way up. A null pointer when that fails, which is reported where it is no lack of memory.
[[nodiscard]] Cairo::RefPtr<Cairo::ImageSurface> load_upright(const photo_size_t& size);

}  // namespace taloram
