#pragma once

#include <list>
#include <string>
#include <string_view>
#include <vector>

#include "libutils/bytes/ofsvector.h"

namespace taloram {

// What readers get of a photograph: the picture, and of its data only what shows it as it is and says whose it is.
//
// Of the segments in front of the first scan that are no part of the picture these stay: JFIF without its thumbnail,
// Adobe, the colour profile, and an EXIF segment made anew of orientation, artist and copyright. From the first scan on
// the bytes are those of the photograph, up to its end of image; segments of data between two scans go, and so does all
// behind the end: previews, further pictures, movies. Damaged scans stay as they are.
class public_photo_t {
  public:
    // `photo` is a view on the file's bytes; it is kept. False, without a message, when the segments in front of the
    // first scan can't be read.
    [[nodiscard]] bool read(const libutils::bytes_t& photo);

    // One after the other, they are the public file.
    [[nodiscard]] const std::vector<std::string_view>& parts() const { return parts_; }

  private:
    class reader_t;

    libutils::bytes_t photo_;
    std::list<std::string> made_;
    std::vector<std::string_view> parts_;  // of photo_ and made_
};

}  // namespace taloram
