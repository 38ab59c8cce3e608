#pragma once

#include <list>
#include <string>

#include "libgr/image/image2d.h"
#include "libgr/jpeg/jpeginfo.h"
#include "libgr/pyramid/reduction.h"

namespace taloram {

// The picture of a photograph on its way through the levels: opened, halved again and again, saved in between. What is
// known beforehand to be saved is made at once while the file is read; only of a photograph that resists this, or that
// takes another way than it was told, are all pixels decoded. The saved bytes are the same.
class level_picture_t {
  public:
    // Before open(): the picture will be saved after so many halvings.
    void expect_save(size_t halvings, bool with_segments);

    // Reads a JPEG file. False after a line "<path><load_failure>" or "<decode_subject>: decompress() failed.".
    [[nodiscard]] bool open(const std::string& path, const char* load_failure, const std::string& decode_subject);

    // From now on it is saved without the segments of the file.
    void drop_segments();

    // False after "<subject>: scaledown() failed.".
    [[nodiscard]] bool halve(const std::string& subject);

    // Encodes at the settings' quality. False after a line, then "<path>: savejpeg failed.".
    [[nodiscard]] bool save(const std::string& path);

  private:
    [[nodiscard]] bool decode();
    [[nodiscard]] bool save_encoded(const std::string& path, bool& good);

    libgr::jpegdata_t file_;
    std::string path_;
    std::string decode_subject_;
    size_t halvings_ = 0;
    bool with_segments_ = true;
    libgr::reduction_t encoded_;  // of use while is_decoded_ is false

    bool is_decoded_ = false;  // image_ is the picture after halvings_
    libgr::image2d_t image_;
    std::list<libgr::jpeginfo_t::marker_t> segments_;
};

}  // namespace taloram
