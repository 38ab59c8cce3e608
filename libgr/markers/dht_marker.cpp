#include "libgr/markers/dht_marker.h"

#include <numeric>

#include "libgr/markers/jpeg_iterator.h"

namespace libgr {

namespace {

constexpr uint8_t longest_run = 14;  // of a symbol without bits; 15 with none is ZRL (ITU-T T.81 F.1.2.2.1)
constexpr unsigned max_codes = 255;

}  // namespace

bool dht_marker_t::parse() {
    length = 0;
    tables.clear();
    jpeg_iterator at(begin(), end());
    while (at < end()) {
        if (!parse_table(at)) {
            return false;
        }
    }
    return true;
}

bool dht_marker_t::parse_table(jpeg_iterator& at) {
    const uint8_t b = *at++;
    if (length == max_tables) {
        return refuse_broken();
    }
    const table_id_t id{high_nibble(b), low_nibble(b)};
    tables.push_back(id);
    ++length;
    if (id.th >= dc.size() || id.tc > 1) {
        return refuse_broken();
    }
    huffman_t& table = id.tc == 1 ? ac[id.th] : dc[id.th];
    for (uint8_t& count : table.bits) {
        if (!(at < end())) {
            return refuse_broken();
        }
        count = *at++;
    }
    return parse_symbols(at, table);
}

bool dht_marker_t::parse_symbols(jpeg_iterator& at, huffman_t& table) {
    const unsigned codes = std::accumulate(table.bits.begin(), table.bits.end(), 0U);
    if (codes > max_codes) {
        return refuse_broken();
    }
    table.data.assign(codes, {});
    auto entry = table.data.begin();
    unsigned code = 0;
    for (const uint8_t count : table.bits) {
        for (unsigned i = 0; i < count; ++i, ++code, ++entry) {
            if (!(at < end())) {
                return refuse_broken();
            }
            const uint8_t symbol = *at++;
            *entry = {static_cast<uint16_t>(code), low_nibble(symbol), high_nibble(symbol)};
            if (entry->data_bits == 0 && entry->run_length != 0 && entry->run_length <= longest_run) {
                return refuse("huffman table error", ": run_length=", unsigned{entry->run_length},
                              ", data_bits=", unsigned{entry->data_bits});
            }
        }
        code <<= 1;
    }
    return true;
}

void dht_marker_t::dump() const {
    print_line("dht length: ", length);
    for (const table_id_t& id : tables) {
        print_line("tc: ", unsigned{id.tc}, ", th: ", unsigned{id.th});
        std::string entries;
        if (id.th < dc.size() && id.tc <= 1) {
            for (const data_t& entry : (id.tc == 1 ? ac : dc)[id.th].data) {
                entries += libutils::join_text(entry.code, "/", unsigned{entry.run_length}, "/",
                                               unsigned{entry.data_bits}, ", ");
            }
        }
        print_line("entries: ", entries);
    }
}

}  // namespace libgr
