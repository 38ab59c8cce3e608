#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "libgr/pyramid/dct.h"
#include "libgr/pyramid/decoding_table.h"

namespace libgr {

// A scan's bytes without stuffed zeros, up to the next marker; only a part of them is here at a time.
class coded_window_t {
  public:
    // Whoever is not behind `low` may read `margin` bytes without asking.
    static constexpr size_t margin = 2048;

    // False, here and below, when a marker is missing or what stands for it is none.
    [[nodiscard]] bool start(const unsigned char* from, const unsigned char* end);
    [[nodiscard]] bool start_interval();
    // Brings bytes in behind those that are not yet read, which start at `at`, and moves both. False, too, when there
    // are no more.
    [[nodiscard]] bool refill(const unsigned char*& at);

    [[nodiscard]] const unsigned char* begin() const { return bytes_.data(); }
    [[nodiscard]] const unsigned char* low() const { return low_; }
    // True when all bits in front of the marker have been read but for a part of a byte.
    [[nodiscard]] bool ends_at(const unsigned char* at, uint64_t unread_bits) const;
    [[nodiscard]] uint8_t marker() const { return marker_; }

  private:
    [[nodiscard]] bool take_bytes();

    static constexpr size_t capacity = 16384;

    const unsigned char* from_ = nullptr;  // stuffed bytes that are not yet taken
    const unsigned char* from_end_ = nullptr;
    unsigned char* end_ = nullptr;
    const unsigned char* low_ = nullptr;
    bool complete_ = false;  // the marker follows
    uint8_t marker_ = 0;
    std::array<unsigned char, capacity + 2 * margin> bytes_{};  // what is damaged is read beyond the end
};

// One block in the order of the scan.
struct decoded_block_t {
    coefficient_group_t* group;
    unsigned block;  // of the group
    unsigned component;
};

// The blocks of a scan, one MCU after the other.
class scan_t {
  public:
    struct component_t {
        const decoding_table_t* dc = nullptr;
        const decoding_table_t* ac = nullptr;
        int last_dc = 0;
    };

    static constexpr size_t max_mcu_blocks = 8;
    // More bytes than any MCU takes: codes of 16 bits and values of 11 or 10.
    static constexpr size_t max_mcu = max_mcu_blocks * (27 + (block_size - 1) * 26) / 8 + 1;
    static_assert(max_mcu + 2 * sizeof(uint64_t) < coded_window_t::margin);

    std::array<component_t, 3> components;

    [[nodiscard]] bool start(const unsigned char* from, const unsigned char* end, unsigned restart_interval);

    // Decodes MCUs of `size` blocks, max_mcu_blocks at most, into groups of zeros. False for all that libjpeg would not
    // take without a warning, and for whatever no encoder writes.
    [[nodiscard]] bool decode(const decoded_block_t* blocks, size_t mcus, size_t size);

    // Behind the last MCU: the end of the image follows, or a restart in front of it.
    [[nodiscard]] bool is_complete();

    // For decode().
    [[nodiscard]] bool start_mcu();
    uint64_t bits = 0;
    uint64_t bit_count = 0;
    const unsigned char* at = nullptr;

  private:
    [[nodiscard]] bool restart();
    void start_bits();

    coded_window_t window_;
    unsigned restart_interval_ = 0;
    unsigned mcus_left_ = 0;  // of the interval
    unsigned next_restart_ = 0;
};

}  // namespace libgr
