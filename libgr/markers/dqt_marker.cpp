#include "libgr/markers/dqt_marker.h"

#include "libgr/markers/zigzag.h"

namespace libgr {

namespace {

constexpr uint64_t table_size = 1 + 64;  // Pq/Tq and the entries

}  // namespace

bool dqt_marker_t::parse() {
    const libutils::byte_reader body = reader();
    if (body.size() == 0 || body.size() % table_size != 0) {
        return refuse_broken();
    }
    n = static_cast<uint8_t>(body.size() / table_size);
    if (n > max_tables) {
        return refuse_broken();
    }
    for (size_t t = 0; t < n; ++t) {
        const auto table = body.bytes(t * table_size, table_size);
        const uint8_t pq = high_nibble(table[0]);
        const uint8_t destination = low_nibble(table[0]);
        if (pq != 0) {
            return refuse("not support JPEG data. DQT pq=", unsigned{pq});
        }
        if (destination >= max_tables) {
            return refuse_invalid();
        }
        destinations[t] = destination;
        for (size_t k = 0; k < zigzag_to_array.size(); ++k) {
            tables[destination][zigzag_to_array[k]] = table[1 + k];
        }
    }
    return true;
}

void dqt_marker_t::dump() const {
    print_line("dqt n: ", unsigned{n});
    for (size_t t = 0; t < n && t < max_tables; ++t) {
        std::string entries;
        for (const uint8_t entry : tables[destinations[t]]) {
            entries += libutils::join_text(unsigned{entry}, ", ");
        }
        print_line(entries);
    }
}

}  // namespace libgr
