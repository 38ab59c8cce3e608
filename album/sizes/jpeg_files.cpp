#include "album/sizes/jpeg_files.h"

#include <algorithm>

#include "libgr/jpeg/lossless_turn.h"
#include "libutils/diagnostics.h"
#include "settings/settings.h"

namespace taloram {

bool save_jpeg_file(libgr::jpegdata_t& data, const std::string& path) {
    const bool saved = data.save(path.c_str());
    if (!saved) {
        libutils::report(path, ": jpegdata save() failed.");
    }
    return saved;
}

bool load_jpeg_file(libgr::jpegdata_t& data, const std::string& path, const std::string& subject) {
    const bool loaded = data.load(path.c_str());
    if (!loaded) {
        libutils::report(subject, ": jpegdata load() failed.");
    }
    return loaded;
}

bool copyjpeg(const std::string& from, const std::string& to) {
    libgr::jpegdata_t data;
    return load_jpeg_file(data, from, from) && save_jpeg_file(data, to);
}

bool rotatejpeg(const std::string& from, const std::string& to, unsigned long count) {
    libgr::jpegdata_t data;
    if (!load_jpeg_file(data, from, from)) {
        return false;
    }
    libgr::jpegdata_t turned;
    return turn_jpeg(turned, data, from, count) && save_jpeg_file(turned, to);
}

bool turn_jpeg(libgr::jpegdata_t& turned, const libgr::jpegdata_t& data, const std::string& path, unsigned long count) {
    const bool good = libgr::transform(count, turned, data);
    if (!good) {
        libutils::report(path, ": transform() failed.");
    }
    return good;
}

bool savejpeg(const std::string& path, libgr::image2d_t& image, std::list<libgr::jpeginfo_t::marker_t>& markers) {
    libgr::jpeginfo_t info;
    info.markers = markers;
    libgr::jpegdata_t data;
    if (!info.compress(data, image, encoding_quality(), true)) {
        libutils::report(path, ": svjinfo compress() failed.");
        return false;
    }
    return save_encoded_jpeg(path, data);
}

bool save_encoded_jpeg(const std::string& path, libgr::jpegdata_t& data) {
    const bool saved = data.save(path.c_str());
    if (!saved) {
        libutils::report(path, "svjdata save() failed.");
    }
    return saved;
}

int encoding_quality() {
    constexpr uint64_t best_quality = 100;
    return static_cast<int>(std::min(g_global.jpeg_compress, best_quality));
}

}  // namespace taloram
