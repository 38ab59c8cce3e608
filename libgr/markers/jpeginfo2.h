#pragma once

#include <cstdint>
#include <list>

#include "libgr/exif/app1_marker.h"
#include "libgr/jpeg/jpegdata.h"
#include "libgr/markers/dht_marker.h"
#include "libgr/markers/dqt_marker.h"
#include "libgr/markers/dri_marker.h"
#include "libgr/markers/sof0_marker.h"
#include "libgr/markers/sos_marker.h"

namespace libgr {

// Splits a baseline JPEG file into its segments without libjpeg. Only 8-bit baseline files pass.
class jpeginfo2_t {
  public:
    struct marker_t {
        uint16_t marker = 0;     // whole code; 0 for the data after the first scan header
        libutils::bytes_t data;  // the body after the length field, a view on the file's buffer
    };

    std::list<marker_t> markers;
    app1_marker_t app1_marker;
    sof0_marker_t sof0_marker;
    dqt_marker_t dqt_marker;
    dht_marker_t dht_marker;
    dri_marker_t dri_marker;
    sos_marker_t sos_marker;
    libutils::bytes_t entropy_coded_data;  // from after the first scan header to the end of the file

    // Reads no file; the path is not kept.
    explicit jpeginfo2_t(const char* path);

    // Lists the segments of `data` up to the first scan and parses frame, tables and scan header. Refusals are one line
    // on standard error; a file with bytes after an EOI before any scan is refused without one.
    [[nodiscard]] bool analyze(jpegdata2_t& data);

    // The body of the first segment with `code`, an empty view when there is none. It stays valid after the reader.
    [[nodiscard]] libutils::bytes_t get_marker(unsigned short code) const;

  private:
    [[nodiscard]] bool parse_segment(const marker_t& segment);

    // Parses the scan header, which is the last segment of the list; `rest` is what follows it.
    [[nodiscard]] bool parse_scan(const libutils::bytes_t& rest);
};

}  // namespace libgr
