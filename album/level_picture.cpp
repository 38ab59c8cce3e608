#include "album/level_picture.h"

#include <algorithm>

#include "album/reduced_sizes.h"
#include "libgr/image/pixel_operations.h"
#include "libutils/diagnostics.h"

namespace taloram {

void level_picture_t::expect_save(size_t halvings, bool with_segments) {
    if (halvings == 0) {
        is_decoded_ = true;
        return;
    }
    encoded_.levels.resize(std::max(encoded_.levels.size(), halvings));
    encoded_.levels[halvings - 1].wanted = true;
    encoded_.levels[halvings - 1].with_segments = with_segments;
}

bool level_picture_t::open(const std::string& path, const char* load_failure, const std::string& decode_subject) {
    path_ = path;
    decode_subject_ = decode_subject;
    if (!file_.load(path_.c_str())) {
        libutils::report(path_, load_failure);
        return false;
    }
    encoded_.quality = encoding_quality();
    return (!is_decoded_ && libgr::reduce(encoded_, file_)) || decode();
}

// Catches up with the halvings.
bool level_picture_t::decode() {
    encoded_.levels.clear();
    is_decoded_ = true;
    libgr::jpeginfo_t info;
    if (!info.decompress(image_, file_, 0, false, libgr::color3ub_t())) {
        libutils::report(decode_subject_, ": decompress() failed.");
        return false;
    }
    if (with_segments_) {
        segments_ = info.markers;
    }
    file_.clear();
    for (size_t i = 0; i < halvings_; ++i) {
        if (!libgr::scaledown(image_, image_)) {
            libutils::report(decode_subject_, ": scaledown() failed.");
            return false;
        }
    }
    return true;
}

void level_picture_t::drop_segments() {
    with_segments_ = false;
    segments_.clear();
}

bool level_picture_t::halve(const std::string& subject) {
    ++halvings_;
    const bool halved = !is_decoded_ || libgr::scaledown(image_, image_);
    if (!halved) {
        libutils::report(subject, ": scaledown() failed.");
    }
    return halved;
}

bool level_picture_t::save(const std::string& path) {
    bool good = false;
    if (!save_encoded(path, good)) {
        good = (is_decoded_ || decode()) && savejpeg(path, image_, segments_);
    }
    if (!good) {
        libutils::report(path, ": savejpeg failed.");
    }
    return good;
}

// False when the picture was not encoded as it now is to be saved; otherwise `good` tells whether it was saved.
bool level_picture_t::save_encoded(const std::string& path, bool& good) {
    if (is_decoded_ || halvings_ == 0 || halvings_ > encoded_.levels.size()) {
        return false;
    }
    libgr::reduction_t::level_t& level = encoded_.levels[halvings_ - 1];
    if (!level.wanted || level.with_segments != with_segments_) {
        return false;
    }
    good = save_encoded_jpeg(path, level.stream);
    return true;
}

}  // namespace taloram
