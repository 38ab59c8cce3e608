#include "libgr/pyramid/huffman_decoder.h"

#include <algorithm>
#include <cstring>

// Compiled once for every kind of vectors; the running processor decides which is called.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "libgr/pyramid/huffman_decoder.cpp"
#include <hwy/foreach_target.h>
// It needs foreach_target.h before it.
#include <hwy/highway.h>

#include "libgr/pyramid/word_vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace libgr::HWY_NAMESPACE {
namespace {

using entry_t = decoding_table_t::entry_t;
using kind_t = decoding_table_t::kind_t;

constexpr size_t last_coefficient = block_size - 1;

// The place of coefficient k in its group, and one that nobody looks at for what would lie beyond the block.
struct places_t {
    std::array<uint16_t, 2 * block_size> of{};

    constexpr places_t() {
        of.fill(group_size);
        std::copy(group_index.begin(), group_index.end(), of.begin());
    }
};
constexpr places_t places;

// The bits that come next.
class bit_reader_t {
  public:
    explicit HWY_INLINE bit_reader_t(const scan_t& scan) : bits_(scan.bits), count_(scan.bit_count), at_(scan.at) {}

    HWY_INLINE void leave(scan_t& scan) const {
        scan.bits = bits_;
        scan.bit_count = count_;
        scan.at = at_;
    }

    // At least 56 bits from now on. Those behind the counted ones are what the next bytes hold anyway.
    HWY_INLINE void refill() {
        uint64_t next = 0;
        for (unsigned i = 0; i < 8; ++i) {  // one instruction
            next = next << 8 | at_[i];
        }
        bits_ |= next >> count_;
        at_ += (63 - count_) / 8;
        count_ |= 56;
    }

    HWY_INLINE void skip(unsigned count) {
        bits_ <<= count;
        count_ -= count;
    }

    [[nodiscard]] HWY_INLINE uint64_t bits() const { return bits_; }

    // The value behind the entry's code (ITU-T T.81 F.2.2.1): without a leading one it is negative.
    [[nodiscard]] HWY_INLINE int value(const entry_t& entry) const {
        const uint64_t value = bits_ << entry.code_bits;
        const uint64_t inverted = inversion(value);
        return static_cast<int>((((value ^ inverted) >> entry.value_shift) ^ inverted) - inverted);
    }

    // The same; it may have no bits.
    [[nodiscard]] HWY_INLINE int dc_value(const entry_t& entry) const {
        const uint64_t value = bits_ << entry.code_bits;
        const uint64_t inverted = inversion(value);
        return static_cast<int>((((value ^ inverted) >> 1 >> entry.value_shift) ^ inverted) - inverted);
    }

  private:
    // All ones without a leading one, else 0.
    static HWY_INLINE uint64_t inversion(uint64_t value) {
        return static_cast<uint64_t>(~(static_cast<int64_t>(value) >> 63));
    }

    uint64_t bits_;
    uint64_t count_;
    const unsigned char* at_;
};

HWY_INLINE bool decode_dc(bit_reader_t& reader, const decoding_table_t& table, int& last_dc) {
    reader.refill();
    const entry_t* entry = &table.look_up(reader.bits());
    if (HWY_UNLIKELY(entry->kind != kind_t::coefficients)) {
        entry = &table.find_long(reader.bits());
        if (entry->kind != kind_t::coefficients) {
            return false;
        }
    }
    last_dc += reader.dc_value(*entry);
    reader.skip(entry->bits);
    return last_dc >= -max_coefficient && last_dc <= max_coefficient;
}

// Returns the last coefficient's index, one over 63 for a block that is not sound. `values` starts at the block's first
// coefficient. Between two refills at most 47 bits are used up.
HWY_INLINE size_t decode_ac(bit_reader_t& reader, const decoding_table_t& table, int16_t* values) {
    constexpr size_t unsound = block_size;
    const auto store = [values](size_t k, int value) { values[places.of[k]] = static_cast<int16_t>(value); };
    size_t k = 0;
    for (;;) {
        reader.refill();
        const entry_t* entry = &table.look_up(reader.bits());
        const auto takes_both = [&] {
            const size_t first = k + entry->step;
            const size_t second = first + entry->second_step;
            if (HWY_UNLIKELY(entry->kind != kind_t::coefficients)) {
                return false;
            }
            store(second, entry->second);
            store(first, reader.value(*entry));
            if (HWY_UNLIKELY(second >= last_coefficient)) {
                return false;
            }
            k = second;
            reader.skip(entry->bits);
            return true;
        };
        if (takes_both()) {
            entry = &table.look_up(reader.bits());
            if (takes_both()) {
                continue;
            }
        }
        if (entry->kind == kind_t::coefficients && k + entry->step + entry->second_step == last_coefficient) {
            reader.skip(entry->bits);  // both are stored
            return last_coefficient;
        }
        if (HWY_UNLIKELY(entry->kind == kind_t::long_code)) {
            entry = &table.find_long(reader.bits());
        }
        if (entry->kind == kind_t::end && k + entry->second_step < last_coefficient) {
            store(k + entry->step, reader.value(*entry));
            k += entry->second_step;
            reader.skip(entry->bits);
            return k;
        }
        if (entry->kind == kind_t::zeros) {
            k += 16;
            if (k >= last_coefficient) {
                return unsound;
            }
            reader.skip(entry->bits);
            continue;
        }
        if (entry->kind == kind_t::bad) {
            return unsound;
        }
        // Near the end of the block the first coefficient is taken alone.
        k += entry->step;
        store(k, reader.value(*entry));
        reader.skip(entry->first_bits());
        if (k >= last_coefficient) {
            return k;
        }
    }
}

bool decode_mcus(scan_t& scan, const decoded_block_t* blocks, size_t mcus, size_t size) {
    for (; mcus != 0; --mcus, blocks += size) {
        if (!scan.start_mcu()) {
            return false;
        }
        bit_reader_t reader(scan);
        for (const decoded_block_t* block = blocks; block != blocks + size; ++block) {
            scan_t::component_t& component = scan.components[block->component];
            if (!decode_dc(reader, *component.dc, component.last_dc)) {
                return false;
            }
            int16_t* const values = &block->group->values[block->block * block_side];
            const size_t last = decode_ac(reader, *component.ac, values);
            if (last > last_coefficient) {
                return false;
            }
            values[0] = static_cast<int16_t>(component.last_dc);
            block->group->last = std::max(block->group->last, static_cast<uint8_t>(last));
        }
        reader.leave(scan);
    }
    return true;
}

// Copies bytes without the zeros behind FF as long as whole vectors are there and fit, up to a marker.
#if HWY_TARGET == HWY_SCALAR
void unstuff(unsigned char*&, const unsigned char*, const unsigned char*&, const unsigned char*) {
}
#else
void unstuff(unsigned char*& to, const unsigned char* to_end, const unsigned char*& from,
             const unsigned char* from_end) {
    constexpr bytes_tag_t tag;
    constexpr ptrdiff_t step = hn::MaxLanes(tag);
    while (to_end - to >= step && from_end - from > step) {
        const bytes_t bytes = hn::LoadU(tag, from);
        hn::StoreU(bytes, tag, to);
        const intptr_t found = hn::FindFirstTrue(tag, hn::Eq(bytes, hn::Set(tag, uint8_t{0xFF})));
        if (found < 0) {
            to += step;
            from += step;
            continue;
        }
        if (from[found + 1] != 0) {
            to += found;
            from += found;
            return;
        }
        to += found + 1;
        from += found + 2;
    }
}
#endif

}  // namespace
}  // namespace libgr::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace libgr {

HWY_EXPORT(decode_mcus);
HWY_EXPORT(unstuff);

namespace {

constexpr unsigned char marker_start = 0xFF;
constexpr uint8_t restart_marker = 0xD0;
constexpr uint8_t restart_markers = 8;
constexpr uint8_t end_marker = 0xD9;

}  // namespace

bool coded_window_t::start(const unsigned char* from, const unsigned char* end) {
    from_ = from;
    from_end_ = end;
    return start_interval();
}

bool coded_window_t::start_interval() {
    end_ = bytes_.data();
    return take_bytes();
}

bool coded_window_t::refill(const unsigned char*& at) {
    if (complete_) {
        return false;
    }
    const auto unread = static_cast<size_t>(end_ - at);
    std::memmove(bytes_.data(), at, unread);
    at = bytes_.data();
    end_ = bytes_.data() + unread;
    return take_bytes();
}

bool coded_window_t::take_bytes() {
    unsigned char* const room_end = bytes_.data() + capacity;
    HWY_DYNAMIC_DISPATCH(unstuff)(end_, room_end, from_, from_end_);
    complete_ = false;
    while (end_ != room_end && !complete_) {
        if (from_end_ - from_ < 2) {
            return false;
        }
        const unsigned char byte = *from_++;
        if (byte != marker_start || *from_ == 0) {
            *end_++ = byte;
            from_ += byte == marker_start ? 1 : 0;
            continue;
        }
        from_ = std::find_if(from_, from_end_, [](unsigned char code) { return code != marker_start; });
        if (from_ == from_end_ || *from_ == 0) {
            return false;
        }
        marker_ = *from_++;
        complete_ = true;
    }
    low_ = complete_ ? end_ + sizeof(uint64_t) : end_ - margin;
    return true;
}

bool coded_window_t::ends_at(const unsigned char* at, uint64_t unread_bits) const {
    const ptrdiff_t read = (at - bytes_.data()) * 8 - static_cast<ptrdiff_t>(unread_bits);
    const ptrdiff_t all = (end_ - bytes_.data()) * 8;
    return complete_ && read <= all && all - read < 8;
}

bool scan_t::start(const unsigned char* from, const unsigned char* end, unsigned restart_interval) {
    restart_interval_ = restart_interval;
    mcus_left_ = restart_interval;
    next_restart_ = 0;
    start_bits();
    return window_.start(from, end);
}

void scan_t::start_bits() {
    bits = 0;
    bit_count = 0;
    at = window_.begin();
    for (component_t& component : components) {
        component.last_dc = 0;
    }
}

bool scan_t::start_mcu() {
    if (restart_interval_ != 0) {
        if (mcus_left_ == 0 && !restart()) {
            return false;
        }
        --mcus_left_;
    }
    return at <= window_.low() || window_.refill(at);
}

bool scan_t::restart() {
    if (!window_.ends_at(at, bit_count) || window_.marker() != restart_marker + next_restart_) {
        return false;
    }
    next_restart_ = (next_restart_ + 1) % restart_markers;
    mcus_left_ = restart_interval_;
    start_bits();
    return window_.start_interval();
}

bool scan_t::decode(const decoded_block_t* blocks, size_t mcus, size_t size) {
    return HWY_DYNAMIC_DISPATCH(decode_mcus)(*this, blocks, mcus, size);
}

bool scan_t::is_complete() {
    if (restart_interval_ != 0 && mcus_left_ == 0 && window_.marker() != end_marker && !restart()) {
        return false;
    }
    return window_.ends_at(at, bit_count) && window_.marker() == end_marker;
}

}  // namespace libgr
#endif
