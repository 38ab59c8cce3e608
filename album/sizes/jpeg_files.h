#pragma once

#include <list>
#include <string>

#include "libgr/image/image2d.h"
#include "libgr/jpeg/jpeginfo.h"

namespace taloram {

// The JPEG files of an album: read, written, copied, turned, encoded. Failures are reported.

// The file `path`; the line about a failure begins with `subject`.
[[nodiscard]] bool load_jpeg_file(libgr::jpegdata_t& data, const std::string& path, const std::string& subject);

// Writes the file `path`.
[[nodiscard]] bool save_jpeg_file(libgr::jpegdata_t& data, const std::string& path);

// A JPEG file written again as it is, or turned without loss; `from` and `to` may be the same path.
[[nodiscard]] bool copyjpeg(const std::string& from, const std::string& to);
[[nodiscard]] bool rotatejpeg(const std::string& from, const std::string& to, unsigned long count);

// `data` turned without loss; `path` names it in the line about a failure.
[[nodiscard]] bool turn_jpeg(libgr::jpegdata_t& turned, const libgr::jpegdata_t& data, const std::string& path,
                             unsigned long count);

// Encodes `image` with `markers` at the settings' quality and writes it.
[[nodiscard]] bool savejpeg(const std::string& path, libgr::image2d_t& image,
                            std::list<libgr::jpeginfo_t::marker_t>& markers);

// Its second half, for a picture that is encoded already.
[[nodiscard]] bool save_encoded_jpeg(const std::string& path, libgr::jpegdata_t& data);

// The settings' quality, on libjpeg's scale.
[[nodiscard]] int encoding_quality();

}  // namespace taloram
