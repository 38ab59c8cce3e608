#include "shooting_data/photo_header.h"

#include <algorithm>
#include <utility>

#include "libgr/exif/app1_marker.h"
#include "libgr/jpeg/whole_picture.h"

namespace taloram {

libutils::bytes_t photo_header_t::app1() const {
    const auto found = std::find_if(segments.begin(), segments.end(),
                                    [](const auto& segment) { return segment.marker == (libgr::marker_APP1 & 0xFF); });
    return found == segments.end() ? libutils::bytes_t() : found->data;
}

bool load_photo_header(photo_header_t& header, const std::string& path) {
    libgr::jpegdata_t data;
    return !load_file(data, path) && read_photo_header(header, data);
}

bool read_photo_header(photo_header_t& header, libgr::jpegdata_t& data) {
    header = {};
    libgr::jpeginfo_t info;
    if (!info.analyze_markers(data)) {
        return false;
    }
    header.width = info.width;
    header.height = info.height;
    header.segments = std::move(info.markers);
    return true;
}

void read_exif(photo_header_t& header) {
    const libutils::bytes_t segment = header.app1();
    if (segment.empty()) {
        return;
    }
    libgr::app1_marker_t app1;
    app1.set_app1_buffer(segment);
    libgr::jpegdata_t thumbnail;
    if (app1.parse() && !app1.tiff_header.thumbnail.empty()) {
        thumbnail.setvector(app1.tiff_header.thumbnail, "");
    }
    // Some cameras and editors leave bytes there that no decoder reads.
    if (!thumbnail.empty() && libgr::is_whole_picture(thumbnail)) {
        header.thumbnail = thumbnail;
    }
    if (const auto& values = app1.tiff_header.tag_0th_ifd.orientation; !values.empty()) {
        header.orientation_value = values.front();
    }
}

}  // namespace taloram
