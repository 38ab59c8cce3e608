#pragma once

#include <array>
#include <optional>
#include <vector>

#include "libgr/jpeg/libjpeg_bridge.h"
#include "libgr/pyramid/huffman_decoder.h"

namespace libgr {

enum class chroma_layout_t { none, full, half_width, half_both };  // gray, 4:4:4, 4:2:2, 4:2:0

// Empty for every other one.
[[nodiscard]] std::optional<chroma_layout_t> chroma_layout_of(const jpeg_decompress_struct& info);

// Decodes sound baseline photographs from cameras into planes, as jpeg_read_raw_data() would: the same bytes. Whatever
// else there is it leaves to libjpeg, without a word.
class baseline_decoder_t {
  public:
    baseline_decoder_t() = default;
    baseline_decoder_t(const baseline_decoder_t&) = delete;
    baseline_decoder_t& operator=(const baseline_decoder_t&) = delete;

    // Behind libjpeg's reading of the header, which is to be without a warning. False for another layout, for
    // several scans, or when something is odd already.
    [[nodiscard]] bool start(const jpeg_decompress_struct& info);

    // The next row of MCUs, 8 or 16 pixel rows a plane as its sampling tells, with room for a multiple of 64 bytes.
    // False when something is not as it should be, also behind the last row.
    [[nodiscard]] bool read_rows(JSAMPARRAY const* planes);

  private:
    static constexpr size_t batch_mcus = 8;  // decoded before they are transformed

    // A component's blocks that lie in one row.
    struct block_row_t {
        size_t component;
        size_t row;  // among those of an MCU
        size_t mcu_blocks;
        std::array<coefficient_group_t, 2 * batch_mcus / group_blocks> groups;
    };

    [[nodiscard]] bool read_tables(const jpeg_decompress_struct& info);
    void arrange_blocks(const jpeg_decompress_struct& info);

    std::array<decoding_table_t, NUM_HUFF_TBLS> dc_tables_;
    std::array<decoding_table_t, NUM_HUFF_TBLS> ac_tables_;
    std::array<std::array<uint16_t, block_size>, 3> factors_{};  // of each component
    scan_t scan_;
    size_t mcus_wide_ = 0;
    size_t mcu_rows_left_ = 0;
    std::array<block_row_t, 6> block_rows_{};
    size_t block_row_count_ = 0;
    std::vector<decoded_block_t> order_;  // that of the scan, for a batch
    size_t mcu_size_ = 0;                 // blocks
};

}  // namespace libgr
