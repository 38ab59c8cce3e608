#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "libgr/jpeg/libjpeg_bridge.h"
#include "libgr/pyramid/dct.h"

namespace libgr {

// Huffman codes of one kind of component (ITU-T T.81 F.1.2).
class code_table_t {
  public:
    code_table_t() = default;
    code_table_t(const JHUFF_TBL& dc, const JHUFF_TBL& ac);

    // The code, and behind it room for the bits of a value; shifted left by 8, in front of the number of all these
    // bits.
    std::array<uint64_t, 16> dc{};   // by size
    std::array<uint64_t, 256> ac{};  // by run * 16 + size
};

// One block in the order of the scan.
struct coded_block_t {
    coded_group_t* group;
    unsigned block;  // of the group
    unsigned component;

    // Makes it a block that only fills the scan up: the other one's DC coefficient and nothing else.
    void fill_up_like(const coded_block_t& other) const {
        group->bits[block * block_side] = other.group->bits[other.block * block_side];
        group->present[block] = 0;
    }
};

// What of a scan is not yet written.
struct bit_rest_t {
    uint64_t bits = 0;
    unsigned count = 0;            // below 8
    std::array<int, 3> last_dc{};  // of each component
};

// More than any block takes: codes of 16 bits and values of 11 or 10.
constexpr size_t max_coded_block = 27 * block_size / 8;
// The encoder may touch so many bytes behind the last one.
constexpr size_t coding_slack = 64;

// Appends the codes of blocks; each component's table is that of its number. Returns the end. Bytes of FF are not yet
// followed by a zero.
unsigned char* encode_blocks(unsigned char* to, bit_rest_t& rest, const coded_block_t* blocks, size_t count,
                             const std::array<const code_table_t*, 3>& tables);

// Copies a scan's bytes, a zero behind each FF (ITU-T T.81 B.1.1.5), and returns the end. There must be room for twice
// as many bytes and the slack.
unsigned char* stuff_bytes(unsigned char* to, const unsigned char* from, const unsigned char* end);

}  // namespace libgr
