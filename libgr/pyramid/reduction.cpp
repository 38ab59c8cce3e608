#include "libgr/pyramid/reduction.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>

#include "libgr/pyramid/reduced_level.h"
#include "libgr/pyramid/row_sources.h"

namespace libgr {

namespace {

// A picture's sides have 16 bits, which 16 halvings use up (ITU-T T.81 B.2.2).
constexpr size_t max_levels = 16;

// Lets libjpeg do all coding, for tests and for whoever doubts.
bool is_left_to_libjpeg() {
#ifndef LIBJPEG_TURBO_VERSION
    return true;  // other libraries compute in other ways
#endif
    const char* const coding = std::getenv("TALORAM_CODING");
    return coding != nullptr && coding == std::string_view("libjpeg");
}

// The levels' buffers stay from photograph to photograph: fresh memory costs more than what is written there.
std::array<libutils::bytes_t, max_levels> kept_buffers;

void take_kept_buffer(jpegdata_t& stream, size_t level) {
    libutils::bytes_t& kept = kept_buffers[level];
    stream.clear();
    if (kept.is_allocated() && kept.owns_alone()) {  // nobody has the last photograph's level any more
        static_cast<libutils::bytes_t&>(stream) = std::move(kept);
    }
    kept.clear();
}

void keep_buffers(const reduction_t& reduction) {
    for (size_t i = 0; i < std::min(max_levels, reduction.levels.size()); ++i) {
        if (reduction.levels[i].stream.is_allocated()) {
            kept_buffers[i] = reduction.levels[i].stream;
        }
    }
}

// All levels: each hands its rows, halved, to the next.
class pyramid_t {
  public:
    explicit pyramid_t(coding_t coding) : coding_(coding) {}

    [[nodiscard]] bool prepare(reduction_t& reduction, decompressor_t& reader);
    void run(const reduction_t& reduction, decompressor_t& reader);
    [[nodiscard]] bool is_complete() const { return complete_; }

  private:
    void prepare_encoder(size_t level, jpegdata_t& stream, decompressor_t& reader);
    void finish();

    [[nodiscard]] bool prepare_source(reduction_t& reduction, decompressor_t& reader);

    coding_t coding_;
    size_t count_ = 0;
    bool complete_ = false;
    const encoder_tables_t* tables_ = nullptr;  // null: libjpeg encodes
    std::optional<encoder_batch_t> batch_;
    std::array<reduced_level_t, max_levels> levels_;
    std::optional<baseline_decoder_t> decoder_;  // none: libjpeg decodes
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
    if (coding_ == coding_t::own) {
        tables_ = encoder_tables_t::make(reduction.quality, color ? 3 : 1);
        batch_.emplace(color ? 3 : 1);
    }
    for (size_t i = 0; i < count_; ++i) {
        reduced_level_t* const next = i + 1 < count_ ? &levels_[i + 1] : nullptr;
        if (!levels_[i].prepare(info.image_width >> (i + 1), info.image_height >> (i + 1), color ? 3 : 1, next)) {
            return false;
        }
        if (reduction.levels[i].wanted) {
            prepare_encoder(i, reduction.levels[i].stream, reader);
        }
    }
    return prepare_source(reduction, reader);
}

bool pyramid_t::prepare_source(reduction_t& reduction, decompressor_t& reader) {
    const jpeg_decompress_struct& info = reader.info;
    from_planes_ = planes_source_t::fits(info);
    if (from_planes_ && coding_ == coding_t::own && !decoder_.emplace().start(info)) {
        decoder_.reset();
    }
    reduction.by_libjpeg = !decoder_;
    return from_planes_ ? planes_.prepare(info) : rows_.prepare(info);
}

void pyramid_t::prepare_encoder(size_t level, jpegdata_t& stream, decompressor_t& reader) {
    if (tables_ == nullptr) {
        stream.clear();
        levels_[level].encode_by_libjpeg(stream, reader);
    } else {
        take_kept_buffer(stream, level);
        levels_[level].encode_into(stream, *batch_, *tables_);
    }
}

void pyramid_t::run(const reduction_t& reduction, decompressor_t& reader) {
    for (size_t i = 0; i < count_; ++i) {
        if (levels_[i].is_encoded()) {
            levels_[i].start(reduction.quality, reduction.levels[i].with_segments ? reader.info.marker_list : nullptr);
        }
    }
    const bool read = from_planes_ ? planes_.read(reader, decoder_ ? &*decoder_ : nullptr, levels_[0])
                                   : rows_.read(reader, levels_[0]);
    if (read && reader.warnings() == 0) {
        finish();
    }
}

void pyramid_t::finish() {
    complete_ = true;
    for (size_t i = 0; i < count_; ++i) {
        if (levels_[i].is_encoded()) {
            complete_ = levels_[i].finish() && complete_;
        }
    }
}

}  // namespace

bool reduce(reduction_t& reduction, const jpegdata_t& source, coding_t coding) {
    decompressor_t reader(source);
    reader.silence();
    reduction.by_libjpeg = true;
    const auto pyramid = std::make_unique<pyramid_t>(coding);
    const bool reduced = reader.attempt([&] { reader.open(); }) && pyramid->prepare(reduction, reader) &&
                         reader.attempt([&] { pyramid->run(reduction, reader); }) && pyramid->is_complete();
    keep_buffers(reduction);
    return reduced;
}

bool reduce(reduction_t& reduction, const jpegdata_t& source) {
    if (!is_left_to_libjpeg()) {
        const bool reduced = reduce(reduction, source, coding_t::own);
        if (reduced || reduction.by_libjpeg) {
            return reduced;
        }
    }
    return reduce(reduction, source, coding_t::libjpeg);
}

}  // namespace libgr
