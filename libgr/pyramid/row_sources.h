#pragma once

#include <array>

#include "libgr/pyramid/reduced_level.h"

namespace libgr {

// Each takes the photograph's rows from the decompressor, halves them and hands them to level 1. What libjpeg does in
// read() belongs inside an attempt of the reader, whose jump may leave it; at libjpeg's first warning it ends early.

// The decompressor's planes before upsampling: upsampling, colours and halving then are one pass while the rows lie in
// the processor's cache.
class planes_source_t {
  public:
    // True for layouts that ycc_rows.h knows, large enough that libjpeg upsamples them so.
    [[nodiscard]] static bool fits(const jpeg_decompress_struct& info);

    [[nodiscard]] bool prepare(const jpeg_decompress_struct& info);  // false when memory is short
    void read(decompressor_t& reader, reduced_level_t& level);

  private:
    static constexpr JDIMENSION max_imcu_rows = 2 * DCTSIZE;

    struct chroma_t {
        std::array<JSAMPROW, 2 * DCTSIZE> rows{};  // two iMCU rows
        std::array<int16_t*, 2> upsampled{};       // of the two picture rows in work
    };

    void halve_rows_up_to(JDIMENSION end, JDIMENSION height, reduced_level_t& level);
    void upsample(chroma_t& chroma, JDIMENSION y, unsigned which) const;

    bool halved_height_ = false;  // 4:2:0, else 4:2:2
    JDIMENSION imcu_rows_ = 0;    // pixel rows
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
    void read(decompressor_t& reader, reduced_level_t& level);

  private:
    void halve(reduced_level_t& level);

    bool gray_ = false;
    size_t stride_ = 0;
    libutils::bytes_t memory_;  // two rows
};

}  // namespace libgr
