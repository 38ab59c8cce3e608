#include "libgr/pyramid/decoding_table.h"

#include <algorithm>

namespace libgr {

namespace {

using entry_t = decoding_table_t::entry_t;
using kind_t = decoding_table_t::kind_t;

constexpr unsigned max_dc_size = 11;  // of pictures of 8 bits (ITU-T T.81 tables F.1 and F.2)
constexpr unsigned max_ac_size = 10;
constexpr unsigned end_of_block = 0x00;
constexpr unsigned sixteen_zeros = 0xF0;

entry_t entry_of(unsigned symbol, unsigned length, bool is_dc) {
    const unsigned size = symbol % 16;
    const unsigned run = symbol / 16;
    entry_t entry;
    entry.bits = entry.code_bits = static_cast<uint8_t>(length);
    if (symbol == sixteen_zeros && !is_dc) {
        entry.kind = kind_t::zeros;
    } else if (symbol == end_of_block && !is_dc) {
        entry.kind = kind_t::end;
        entry.step = DCTSIZE2;
    } else if (is_dc ? symbol <= max_dc_size : size != 0 && size <= max_ac_size) {
        entry.kind = kind_t::coefficients;
        entry.bits = static_cast<uint8_t>(length + size);
        entry.value_shift = static_cast<uint8_t>((is_dc ? 63 : 64) - size);
        entry.step = static_cast<uint8_t>(run + 1);
    }
    return entry;
}

}  // namespace

bool decoding_table_t::build(const JHUFF_TBL& table, bool is_dc) {
    lookup_bits_ = is_dc ? dc_lookup_bits : ac_lookup_bits;
    entry_t longer;
    longer.kind = kind_t::long_code;
    entries_.fill(longer);
    unsigned code = 0;
    unsigned index = 0;
    for (unsigned length = 1; length <= max_length; ++length, code <<= 1) {
        const unsigned count = table.bits[length];
        if (index + count > long_entries_.size() || (count != 0 && code + count >= 1U << length)) {
            return false;  // no code is all ones (ITU-T T.81 annex C)
        }
        first_codes_[length] = code;
        first_indices_[length] = index;
        for (unsigned i = 0; i < count; ++i, ++code, ++index) {
            const unsigned symbol = table.huffval[index];
            if (is_dc && symbol > 15) {
                return false;
            }
            long_entries_[index] = entry_of(symbol, length, is_dc);
            if (length <= lookup_bits_) {
                add_code(long_entries_[index], code, length);
            }
        }
        long_code_ends_[length] = code;
    }
    if (!is_dc) {
        join_pairs();
    }
    return true;
}

void decoding_table_t::add_code(const entry_t& entry, unsigned code, unsigned length) {
    const unsigned rest = lookup_bits_ - length;
    std::fill_n(entries_.begin() + (code << rest), 1U << rest, entry);
}

// Gives each entry what follows its first coefficient, where the bits tell.
void decoding_table_t::join_pairs() {
    const auto single = entries_;
    for (unsigned bits = 0; bits < entries_.size(); ++bits) {
        entry_t& entry = entries_[bits];
        if (entry.kind != kind_t::coefficients || entry.bits >= lookup_bits_) {
            continue;
        }
        const entry_t& next = single[bits << entry.bits & (entries_.size() - 1)];
        const unsigned total = entry.bits + next.bits;
        if (total > lookup_bits_) {
            continue;
        }
        if (next.kind == kind_t::end) {
            entry.kind = kind_t::end;
            entry.second_step = entry.step;
            entry.bits = static_cast<uint8_t>(total);
        } else if (next.kind == kind_t::coefficients) {
            const unsigned size = next.bits - next.code_bits;
            const auto ones = static_cast<int>((1U << size) - 1);
            const int value = static_cast<int>(bits >> (lookup_bits_ - total)) & ones;
            entry.second = static_cast<int16_t>(value > ones / 2 ? value : value - ones);
            entry.second_step = next.step;
            entry.bits = static_cast<uint8_t>(total);
        }
    }
}

const decoding_table_t::entry_t& decoding_table_t::find_long(uint64_t bits) const {
    static constexpr entry_t none;
    for (unsigned length = lookup_bits_ + 1; length <= max_length; ++length) {
        const auto code = static_cast<unsigned>(bits >> (64 - length));
        if (code >= first_codes_[length] && code < long_code_ends_[length]) {
            return long_entries_[first_indices_[length] + code - first_codes_[length]];
        }
    }
    return none;
}

}  // namespace libgr
