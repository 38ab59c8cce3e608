#pragma once

#include <array>
#include <cstdint>

#include "libgr/jpeg/libjpeg_bridge.h"

namespace libgr {

// What the next bits of a scan say, by as many of them as a look-up takes: one coefficient, or two where both fit in.
class decoding_table_t {
  public:
    enum class kind_t : uint8_t {
        coefficients,  // one or two
        end,           // none or one, and the end of the block
        zeros,         // sixteen
        long_code,     // find_long() tells
        bad,           // no code, or one that no picture of 8 bits needs
    };

    struct entry_t {
        uint8_t bits = 0;         // of all that it says
        uint8_t code_bits = 0;    // of the first coefficient's code
        uint8_t value_shift = 0;  // leaves the first value of 64 bits; for a DC coefficient, of 63
        uint8_t step = 0;         // from the coefficient before to the first one; beyond the block for none
        uint8_t second_step = 0;  // from there to the second one, 0 for none; before an end, what `step` counts
        kind_t kind = kind_t::bad;
        int16_t second = 0;

        // Of the first coefficient alone.
        [[nodiscard]] unsigned first_bits() const { return code_bits + 64U - value_shift; }
    };

    // False when libjpeg refuses the table.
    [[nodiscard]] bool build(const JHUFF_TBL& table, bool is_dc);

    [[nodiscard]] const entry_t& look_up(uint64_t bits) const { return entries_[bits >> (64 - lookup_bits_)]; }
    [[nodiscard]] const entry_t& find_long(uint64_t bits) const;

  private:
    void add_code(const entry_t& entry, unsigned code, unsigned length);
    void join_pairs();

    static constexpr unsigned max_length = 16;
    // All tables of a photograph are to stay in the processor's nearest cache.
    static constexpr unsigned ac_lookup_bits = 11;
    static constexpr unsigned dc_lookup_bits = 8;

    unsigned lookup_bits_ = ac_lookup_bits;
    std::array<entry_t, 1U << ac_lookup_bits> entries_;
    std::array<entry_t, 256> long_entries_;  // in the order of their codes
    std::array<uint32_t, max_length + 1> long_code_ends_{};
    std::array<uint32_t, max_length + 1> first_codes_{};
    std::array<uint32_t, max_length + 1> first_indices_{};
};

}  // namespace libgr
