#pragma once

#include <array>
#include <optional>

#include "libgr/jpeg/libjpeg_bridge.h"
#include "libgr/pyramid/baseline_encoder.h"

namespace libgr {

// The pixels of a row in planes: red, green and blue, or gray alone.
using plane_rows_t = std::array<unsigned char*, 3>;

// One level of a cascade of halvings. It takes the rows of its picture from the top, hands each pair to its encoder
// and, halved, to the next level. Only a few rows are in memory.
//
// Rows pair from the bottom, so that an odd height drops the top row; an odd width drops the last column.
//
// What libjpeg does for it belongs inside an attempt of the reader, whose jump may leave any function from start() on.
class reduced_level_t {
  public:
    // For a picture of that size, 1 or more, with 1 or 3 components; `next` may be null. False when memory is short.
    [[nodiscard]] bool prepare(JDIMENSION width, JDIMENSION height, unsigned components, reduced_level_t* next);

    // Encodes the level into `out`. All must outlive it.
    void encode_into(jpegdata_t& out, encoder_batch_t& batch, const encoder_tables_t& tables) {
        encoder_.emplace(out, batch, tables);
    }
    // The same by libjpeg. A fatal error ends the reader's attempt.
    void encode_by_libjpeg(jpegdata_t& out, decompressor_t& reader) { writer_.emplace(out, reader); }
    [[nodiscard]] bool is_encoded() const { return writer_.has_value() || encoder_.has_value(); }

    // Starts the encoder; `segments` is what the reader saved, null for none.
    void start(int quality, const jpeg_marker_struct* segments);

    // Where the next row goes, and that it is complete.
    [[nodiscard]] const plane_rows_t& row_to_fill() const { return rows_[rows_taken_ % ring_rows()]; }
    void take_row();

    // False when memory was short.
    [[nodiscard]] bool finish();

    [[nodiscard]] JDIMENSION width() const { return width_; }

  private:
    static constexpr JDIMENSION strip_rows = 2 * DCTSIZE;  // of a picture in 4:2:0, one iMCU

    [[nodiscard]] JDIMENSION ring_rows() const { return components_ == 1 ? DCTSIZE : 2; }
    void halve_pair(const plane_rows_t& upper, const plane_rows_t& lower);
    void repeat_last_column(const plane_rows_t& row) const;
    void encode_gray(bool last);
    void encode_color(bool last);
    void encode_strip(JSAMPARRAY* planes);

    JDIMENSION width_ = 0;
    JDIMENSION height_ = 0;
    unsigned components_ = 0;
    reduced_level_t* next_ = nullptr;
    JDIMENSION rows_taken_ = 0;

    libutils::bytes_t memory_;  // of all rows below
    std::array<plane_rows_t, DCTSIZE> rows_{};
    std::array<JSAMPROW, strip_rows> y_{};
    std::array<JSAMPROW, DCTSIZE> cb_{};
    std::array<JSAMPROW, DCTSIZE> cr_{};
    std::optional<baseline_encoder_t> encoder_;
    std::optional<compressor_t> writer_;  // where libjpeg encodes
};

}  // namespace libgr
