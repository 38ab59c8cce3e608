#pragma once

#include <array>
#include <vector>

#include "libgr/jpeg/libjpeg_bridge.h"
#include "libgr/pyramid/huffman_encoder.h"

namespace libgr {

// What all pictures of one quality and kind share: tables, and what stands around the scan. libjpeg itself makes them.
class encoder_tables_t {
  public:
    // With 3 components in 4:2:0, or 1. Null when memory is short; else valid until the next call.
    [[nodiscard]] static const encoder_tables_t* make(int quality, unsigned components);

    [[nodiscard]] unsigned components() const { return components_; }
    [[nodiscard]] const quantiser_t& quantiser(bool chroma) const { return quantisers_[chroma ? 1 : 0]; }
    [[nodiscard]] const std::array<const code_table_t*, 3>& codes() const { return codes_by_component_; }

    // The segments in front of the picture's own ones, and those between these and the scan.
    [[nodiscard]] const std::vector<unsigned char>& start() const { return start_; }
    [[nodiscard]] std::vector<unsigned char> header(JDIMENSION width, JDIMENSION height) const;

  private:
    [[nodiscard]] bool read(int quality, unsigned components);

    int quality_ = 0;
    unsigned components_ = 0;
    std::array<quantiser_t, 2> quantisers_;
    std::array<code_table_t, 2> codes_;
    std::array<const code_table_t*, 3> codes_by_component_{};
    std::vector<unsigned char> start_;
    std::vector<unsigned char> header_;
    size_t frame_size_at_ = 0;  // in header_
};

// The neighbouring MCUs that are transformed before they are coded. All encoders use the same memory.
class encoder_batch_t {
  public:
    // With 3 components in 4:2:0, or 1.
    explicit encoder_batch_t(unsigned components);
    encoder_batch_t(const encoder_batch_t&) = delete;
    encoder_batch_t& operator=(const encoder_batch_t&) = delete;

    static constexpr size_t mcus = 8;
    static constexpr size_t mcu_blocks = 6;
    static constexpr size_t max_blocks = mcus * mcu_blocks;

    std::array<std::array<coded_group_t, 2 * mcus / group_blocks>, 2> luma;  // upper and lower block of an MCU
    std::array<std::array<coded_group_t, mcus / group_blocks>, 2> chroma;
    std::array<coded_block_t, max_blocks> order{};  // that of the scan
    std::array<unsigned char, max_blocks * max_coded_block + coding_slack> bytes;
};

// Encodes a picture with libjpeg's standard tables from strips of planes, as jpeg_write_raw_data() would: the same
// bytes.
class baseline_encoder_t {
  public:
    // All must outlive it. The picture's bytes go into `out`'s buffer, which is taken as it is and only grows.
    baseline_encoder_t(jpegdata_t& out, encoder_batch_t& batch, const encoder_tables_t& tables)
        : out_(out), batch_(batch), tables_(tables) {}

    // Writes the header with the segments that a reader saved, null for none.
    void start(JDIMENSION width, JDIMENSION height, const jpeg_marker_struct* segments);

    // The next rows: 16 of luma and 8 of each chroma, or 8 of gray, filled up to whole MCUs and to a multiple of 64
    // bytes that may be read.
    void take_strip(JSAMPARRAY const* planes);

    // Ends the picture and makes `out` a view of it. False when memory was short.
    [[nodiscard]] bool finish();

  private:
    [[nodiscard]] bool make_room(size_t count);
    void append(const std::vector<unsigned char>& bytes);
    void transform(JSAMPARRAY const* planes, size_t first_mcu, size_t mcus);
    void fill_up(size_t first_mcu, size_t mcus);
    void code(size_t blocks);

    jpegdata_t& out_;
    encoder_batch_t& batch_;
    const encoder_tables_t& tables_;
    size_t size_ = 0;  // bytes
    bool failed_ = false;
    JDIMENSION blocks_wide_ = 0;
    JDIMENSION block_rows_left_ = 0;
    bit_rest_t rest_;
};

}  // namespace libgr
