#include "libgr/pyramid/huffman_encoder.h"

#include <bit>
#include <cstdlib>

// Compiled once for every kind of vectors; the running processor decides which is called.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "libgr/pyramid/huffman_encoder.cpp"
#include <hwy/foreach_target.h>
// It needs foreach_target.h before it.
#include <hwy/highway.h>

#include "libgr/pyramid/word_vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace libgr::HWY_NAMESPACE {
namespace {

constexpr unsigned no_coefficients = 0x00;  // ITU-T T.81 F.1.2.2.1: the rest of the block
constexpr unsigned sixteen_zeros = 0xF0;
constexpr unsigned longest_run = 15;

// The bits that are not yet written, in the accumulator's lowest places.
class bit_writer_t {
  public:
    HWY_INLINE bit_writer_t(unsigned char* to, const bit_rest_t& rest)
        : to_(to), accumulator_(rest.bits), count_(rest.count) {}

    // At most 57 bits between two flushes.
    HWY_INLINE void put(uint64_t code, uint64_t value) {
        const unsigned count = code & 0xFF;
        accumulator_ = accumulator_ << count | code >> 8 | value;
        count_ += count;
    }

    // Leaves less than a byte.
    HWY_INLINE void flush() {
        const uint64_t word = accumulator_ << (-count_ % 64);
        for (unsigned i = 0; i < 8; ++i) {  // one instruction
            to_[i] = static_cast<unsigned char>(word >> (56 - 8 * i));
        }
        to_ += count_ / 8;
        count_ %= 8;
    }

    HWY_INLINE unsigned char* leave_rest(bit_rest_t& rest) const {
        rest.bits = accumulator_;
        rest.count = count_;
        return to_;
    }

  private:
    unsigned char* to_;
    uint64_t accumulator_;
    unsigned count_;
};

HWY_INLINE uint64_t lowest_bits(int value, unsigned count) {
    return static_cast<uint64_t>(value) & ((uint64_t{1} << count) - 1);
}

HWY_INLINE void put_dc(bit_writer_t& writer, int difference, const code_table_t& table) {
    const auto size = static_cast<unsigned>(std::bit_width(static_cast<unsigned>(std::abs(difference))));
    writer.put(table.dc[size], lowest_bits(difference - (difference < 0 ? 1 : 0), size));
}

// The coefficients of a block that are not 0, from the first AC coefficient on.
struct ac_walk_t {
    const int16_t* bits;
    const int16_t* sizes;
    uint64_t left;
    unsigned next = 1;  // the one behind the last that was put

    HWY_INLINE void put_one(bit_writer_t& writer, const code_table_t& table) {
        const auto k = static_cast<unsigned>(std::countr_zero(left));
        unsigned run = k - next;
        if (HWY_UNLIKELY(run > longest_run)) {
            writer.flush();
            for (; run > longest_run; run -= longest_run + 1) {
                writer.put(table.ac[sixteen_zeros], 0);
            }
            writer.flush();
        }
        const size_t place = group_index[k];
        const auto size = static_cast<unsigned>(sizes[place]);
        writer.put(table.ac[run * 16 + size], lowest_bits(bits[place], size));
        left &= left - 1;
        next = k + 1;
    }
};

HWY_INLINE void put_block(bit_writer_t& writer, const coded_block_t& block, const code_table_t& table, int& last_dc) {
    const size_t first = block.block * block_side;
    const int bits = block.group->bits[first];
    const int dc = bits + (bits < 0 ? 1 : 0);
    put_dc(writer, dc - last_dc, table);
    last_dc = dc;
    ac_walk_t walk{&block.group->bits[first], &block.group->sizes[first],
                   block.group->present[block.block] & ~uint64_t{1}};
    // At most 27 bits of the DC coefficient and 26 of each other one between two flushes.
    if (walk.left != 0) {
        walk.put_one(writer, table);
    }
    writer.flush();
    while (walk.left != 0) {
        walk.put_one(writer, table);
        if (walk.left != 0) {
            walk.put_one(writer, table);
        }
        writer.flush();
    }
    if (walk.next != block_size) {
        writer.put(table.ac[no_coefficients], 0);
        writer.flush();
    }
}

unsigned char* put_blocks(unsigned char* to, bit_rest_t& rest, const coded_block_t* blocks, size_t count,
                          const code_table_t* const* tables) {
    bit_writer_t writer(to, rest);
    for (size_t i = 0; i < count; ++i) {
        put_block(writer, blocks[i], *tables[blocks[i].component], rest.last_dc[blocks[i].component]);
    }
    return writer.leave_rest(rest);
}

unsigned char* stuff(unsigned char* to, const unsigned char* from, const unsigned char* end) {
    constexpr unsigned char stuffed = 0xFF;
#if HWY_TARGET != HWY_SCALAR
    constexpr bytes_tag_t tag;
    constexpr size_t step = hn::MaxLanes(tag);
    while (static_cast<size_t>(end - from) >= step) {
        const bytes_t bytes = hn::LoadU(tag, from);
        hn::StoreU(bytes, tag, to);
        const intptr_t found = hn::FindFirstTrue(tag, hn::Eq(bytes, hn::Set(tag, stuffed)));
        const size_t taken = found < 0 ? step : static_cast<size_t>(found) + 1;
        from += taken;
        to += taken;
        if (found >= 0) {
            *to++ = 0;
        }
    }
#endif
    while (from != end) {
        *to++ = *from;
        if (*from++ == stuffed) {
            *to++ = 0;
        }
    }
    return to;
}

}  // namespace
}  // namespace libgr::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace libgr {

HWY_EXPORT(put_blocks);
HWY_EXPORT(stuff);

namespace {

// Calls with each symbol, its code and the code's length (ITU-T T.81 annex C).
template <typename Function>
void for_each_code(const JHUFF_TBL& table, Function function) {
    unsigned code = 0;
    size_t index = 0;
    for (unsigned length = 1; length <= 16; ++length, code <<= 1) {
        for (unsigned i = 0; i < table.bits[length]; ++i) {
            function(table.huffval[index++], code++, length);
        }
    }
}

uint64_t with_room(unsigned code, unsigned length, unsigned size) {
    return uint64_t{code} << size << 8 | (length + size);
}

}  // namespace

code_table_t::code_table_t(const JHUFF_TBL& dc_table, const JHUFF_TBL& ac_table) {
    for_each_code(dc_table, [this](unsigned size, unsigned code, unsigned length) {
        dc[size % dc.size()] = with_room(code, length, size);
    });
    for_each_code(ac_table, [this](unsigned symbol, unsigned code, unsigned length) {
        ac[symbol] = with_room(code, length, symbol % 16);
    });
}

unsigned char* encode_blocks(unsigned char* to, bit_rest_t& rest, const coded_block_t* blocks, size_t count,
                             const std::array<const code_table_t*, 3>& tables) {
    return HWY_DYNAMIC_DISPATCH(put_blocks)(to, rest, blocks, count, tables.data());
}

unsigned char* stuff_bytes(unsigned char* to, const unsigned char* from, const unsigned char* end) {
    return HWY_DYNAMIC_DISPATCH(stuff)(to, from, end);
}

}  // namespace libgr
#endif
