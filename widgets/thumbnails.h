#pragma once

#include <gdkmm/pixbuf.h>

#include <string>

#include "libgr/image/image2d.h"

namespace taloram {

// Small pictures for the dialogs. The loaders return false, without a message, for a name that does not end in ".jpg"
// in any case; any other failure is reported and leaves `image` as the failed step left it.

// An upright preview of a JPEG file: its EXIF thumbnail turned by its orientation; without one that decodes whole, the
// whole picture, not turned, halved until it fits into a quarter of the settings' shrink width and height.
[[nodiscard]] bool load_thumbnail(libgr::image2d_t& image, const std::string& path);

// The whole decoded JPEG file.
[[nodiscard]] bool load_jpeg(libgr::image2d_t& image, const std::string& path);

// A preview of an album's photograph: thumb/, else the preview of size0/, else that of original/.
[[nodiscard]] bool load_exifthumbnail_or_thumbdir(libgr::image2d_t& image, const std::string& album,
                                                  const std::string& name);

// The picture right way up in a pixel buffer of its own. Grayscale is shown in gray; an empty picture, or one of any
// other layout than 8-bit RGB, gives a null pointer.
[[nodiscard]] Glib::RefPtr<Gdk::Pixbuf> convert_to_pixbuf(const libgr::image2d_t& image);

// Thumbnails come in many sizes: one that is larger than width x height pixels is made smaller, for equal rows.
[[nodiscard]] Glib::RefPtr<Gdk::Pixbuf> fit_into(const Glib::RefPtr<Gdk::Pixbuf>& pixels, int width, int height);

}  // namespace taloram
