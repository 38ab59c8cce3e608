#include "libgr/pyramid/reduction.h"

#include <algorithm>
#include <array>

#include "libgr/pyramid/reduced_level.h"
#include "libgr/pyramid/row_sources.h"

namespace libgr {

namespace {

// A picture's sides have 16 bits, which 16 halvings use up (ITU-T T.81 B.2.2).
constexpr size_t max_levels = 16;

// All levels: each hands its rows, halved, to the next.
class pyramid_t {
  public:
    [[nodiscard]] bool prepare(reduction_t& reduction, decompressor_t& reader);
    void run(const reduction_t& reduction, decompressor_t& reader);

    [[nodiscard]] bool prepare_source(const jpeg_decompress_struct& info) {
        from_planes_ = planes_source_t::fits(info);
        return from_planes_ ? planes_.prepare(info) : rows_.prepare(info);
    }

  private:
    size_t count_ = 0;
    std::array<reduced_level_t, max_levels> levels_;
    bool from_planes_ = false;
    planes_source_t planes_;
    rows_source_t rows_;
};

// The number of the lowest wanted level, from 1; 0 when there is none.
size_t lowest_wanted(const reduction_t& reduction) {
    const auto last = std::find_if(reduction.levels.rbegin(), reduction.levels.rend(),
                                   [](const reduction_t::level_t& level) { return level.wanted; });
    return static_cast<size_t>(reduction.levels.rend() - last);
}

bool pyramid_t::prepare(reduction_t& reduction, decompressor_t& reader) {
    const jpeg_decompress_struct& info = reader.info;
    const bool color = info.num_components == 3 && info.out_color_space == JCS_RGB;
    const bool gray = info.num_components == 1 && info.out_color_space == JCS_GRAYSCALE;
    count_ = lowest_wanted(reduction);
    if (!(color || gray) || count_ == 0 || count_ > max_levels ||
        std::min(info.image_width, info.image_height) >> count_ == 0) {
        return false;
    }
    for (size_t i = 0; i < count_; ++i) {
        reduced_level_t* const next = i + 1 < count_ ? &levels_[i + 1] : nullptr;
        if (!levels_[i].prepare(info.image_width >> (i + 1), info.image_height >> (i + 1), color ? 3 : 1, next)) {
            return false;
        }
        if (reduction.levels[i].wanted) {
            reduction.levels[i].stream.clear();
            levels_[i].encode_into(reduction.levels[i].stream, reader);
        }
    }
    return prepare_source(info);
}

void pyramid_t::run(const reduction_t& reduction, decompressor_t& reader) {
    for (size_t i = 0; i < count_; ++i) {
        if (levels_[i].is_encoded()) {
            levels_[i].start(reduction.quality, reduction.levels[i].with_segments ? reader.info.marker_list : nullptr);
        }
    }
    if (from_planes_) {
        planes_.read(reader, levels_[0]);
    } else {
        rows_.read(reader, levels_[0]);
    }
    for (size_t i = 0; i < count_ && reader.warnings() == 0; ++i) {
        if (levels_[i].is_encoded()) {
            levels_[i].finish();
        }
    }
}

}  // namespace

bool reduce(reduction_t& reduction, const jpegdata_t& source) {
    decompressor_t reader(source);
    reader.silence();
    pyramid_t pyramid;
    return reader.attempt([&] { reader.open(); }) && pyramid.prepare(reduction, reader) &&
           reader.attempt([&] { pyramid.run(reduction, reader); }) && reader.warnings() == 0;
}

}  // namespace libgr
