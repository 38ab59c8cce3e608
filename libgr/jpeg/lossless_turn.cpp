#include "libgr/jpeg/lossless_turn.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>

#include "libgr/jpeg/coefficient_turn.h"
#include "libgr/jpeg/libjpeg_bridge.h"
#include "libutils/diagnostics.h"

namespace libgr {

namespace {

// By count of quarter turns.
constexpr std::array<JXFORM_CODE, 4> turns = {JXFORM_NONE, JXFORM_ROT_90, JXFORM_ROT_180, JXFORM_ROT_270};

// Coefficients of 8-bit pictures (ITU-T T.81 F.1.2): a Huffman code exists for these and their differences.
constexpr int max_ac = 1023;
constexpr int min_dc = -1024;

// A table that changed between scans can't be written once for all.
void refuse_changed_tables(jpeg_decompress_struct& source) {
    for (int i = 0; i < source.num_components; ++i) {
        const jpeg_component_info& component = source.comp_info[i];
        const int number = component.quant_tbl_no;
        const JQUANT_TBL* const table =
            number < 0 || number >= NUM_QUANT_TBLS ? nullptr : source.quant_tbl_ptrs[number];
        if (table == nullptr) {
            ERREXIT1(&source, JERR_NO_QUANT_TABLE, number);
        } else if (component.quant_table != nullptr &&
                   std::memcmp(component.quant_table->quantval, table->quantval, sizeof table->quantval) != 0) {
            ERREXIT1(&source, JERR_MISMATCHED_QUANT_TABLE, number);
        }
    }
}

// For most blocks the quick answer to "needs nothing to be cut": no value is outside of -max_ac to max_ac.
bool is_in_range(const JCOEF* block) {
    unsigned outside = 0;
    static_assert((max_ac & (max_ac + 1)) == 0, "one more than it is a power of two");
    for (int i = 0; i < DCTSIZE2; ++i) {
        // In 16 bits, of which the compiler's vectors take most at a time.
        const auto from_low = static_cast<uint16_t>(block[i] + max_ac);
        const auto from_lower = static_cast<uint16_t>(block[i] + max_ac + 1);
        outside |= static_cast<uint16_t>(from_low | from_lower);
    }
    return outside <= 2 * max_ac + 1;
}

// True when something had to be cut.
bool cut_to_range(JCOEF* block) {
    if (is_in_range(block)) {
        return false;
    }
    bool cut = false;
    for (int i = 0; i < DCTSIZE2; ++i) {
        const int value = std::clamp(int{block[i]}, i == 0 ? min_dc : -max_ac, max_ac);
        cut = cut || value != block[i];
        block[i] = static_cast<JCOEF>(value);
    }
    return cut;
}

// What no code exists for would end the work or spoil the stream. Only damaged files hold such values: they are cut
// and libjpeg warns.
void cut_impossible_coefficients(jpeg_decompress_struct& source, const jpeg_compress_struct& turned,
                                 jvirt_barray_ptr* arrays) {
    bool cut = false;
    for (int i = 0; i < turned.num_components; ++i) {
        const jpeg_component_info& component = turned.comp_info[i];
        for (JDIMENSION y = 0; y < component.height_in_blocks; ++y) {
            JBLOCK* const row =
                source.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&source), arrays[i], y, 1, TRUE)[0];
            for (JDIMENSION x = 0; x < component.width_in_blocks; ++x) {
                cut = cut_to_range(row[x]) || cut;
            }
        }
    }
    if (cut) {
        WARNMS(&source, JERR_BAD_DCT_COEF);
    }
}

void write_turned(jpeg_decompress_struct& source, jpeg_compress_struct& turned, const jpeg_transform_info& request) {
    jvirt_barray_ptr* const read = jpeg_read_coefficients(&source);
    refuse_changed_tables(source);
    jpeg_copy_critical_parameters(&source, &turned);
    jvirt_barray_ptr* const arrays = jtransform_adjust_parameters(source, turned, read, request);
    jpeg_write_coefficients(&turned, arrays);
    jtransform_execute_transform(source, read, request);
    cut_impossible_coefficients(source, turned, arrays);
    jpeg_finish_compress(&turned);
    jpeg_finish_decompress(&source);
}

}  // namespace

bool transform(unsigned long count, jpegdata_t& dst, const jpegdata_t& src) {
    if (count >= turns.size()) {
        libutils::report(count, ": jpeg transform rightrotate count over.");
        return false;
    }
    jpegdata_t stream;  // `dst` may be `src`
    decompressor_t reader(src);
    compressor_t writer(stream, reader);
    jpeg_transform_info request;
    request.transform = turns[count];
    bool granted = false;
    if (!reader.attempt([&] {
            reader.create();
            jpeg_save_markers(&reader.info, JPEG_COM, 0xFFFF);
            reader.read_header();
            reader.refuse_oversized();
            writer.create();
            granted = jtransform_request_workspace(reader.info, request);
            if (granted) {
                write_turned(reader.info, writer.info, request);
            }
        })) {
        return false;
    }
    if (!granted) {
        libutils::report(": transformation is not perfect");
        return false;
    }
    dst.setvector(stream, dst.name);
    return reader.warnings() == 0 && writer.warnings() == 0;
}

}  // namespace libgr
