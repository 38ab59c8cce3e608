#pragma once

#include <array>

#include "libgr/pyramid/baseline_decoder.h"
#include "libgr/pyramid/reduced_level.h"

namespace libgr {

// Each takes the photograph's rows, halves them and hands them to level 1. What libjpeg does in read() belongs inside
// an attempt of the reader, whose jump may leave it. False when not all rows are there: at libjpeg's first warning it
// ends early.

// A decoder's planes before upsampling: upsampling, colours and halving then are one pass while the rows lie in
// the processor's cache.
class planes_source_t {
  public:
    // True for layouts that ycc_rows.h knows, large enough that libjpeg upsamples them so.
    [[nodiscard]] static bool fits(const jpeg_decompress_struct& info);

    [[nodiscard]] bool prepare(const jpeg_decompress_struct& info);  // false when memory is short
    // From the decoder, or from libjpeg where there is none.
    [[nodiscard]] bool read(decompressor_t& reader, baseline_decoder_t* decoder, reduced_level_t& level);

  private:
    static constexpr JDIMENSION max_imcu_rows = 2 * DCTSIZE;

    struct chroma_t {
        std::array<JSAMPROW, 2 * max_imcu_rows> rows{};  // two iMCU rows
        std::array<int16_t*, 2> upsampled{};             // of the two picture rows in work
    };

    void halve_rows_up_to(JDIMENSION end, reduced_level_t& level);
    void halve(reduced_level_t& level);
    void upsample(chroma_t& chroma, JDIMENSION y, unsigned which) const;

    chroma_layout_t layout_ = chroma_layout_t::none;
    JDIMENSION imcu_rows_ = 0;         // pixel rows
    JDIMENSION chroma_imcu_rows_ = 0;  // 0 for gray
    JDIMENSION chroma_width_ = 0;
    JDIMENSION chroma_height_ = 0;
    JDIMENSION next_row_ = 0;  // upper of the next pair

    libutils::bytes_t memory_;
    std::array<JSAMPROW, 2 * max_imcu_rows> y_{};  // two iMCU rows
    chroma_t cb_;
    chroma_t cr_;
};

// The decompressor's finished rows, of every other layout.
class rows_source_t {
  public:
    [[nodiscard]] bool prepare(const jpeg_decompress_struct& info);  // false when memory is short
    [[nodiscard]] bool read(decompressor_t& reader, reduced_level_t& level);

  private:
    void halve(reduced_level_t& level);

    bool gray_ = false;
    size_t stride_ = 0;
    libutils::bytes_t memory_;  // two rows
};

}  // namespace libgr
