#include "libgr/pyramid/baseline_decoder.h"

#include <algorithm>

#include "libgr/image/round_up.h"

namespace libgr {

namespace {

// One scan of all components in their order.
bool is_plain_scan(const jpeg_decompress_struct& info) {
    if (info.progressive_mode || info.arith_code || info.data_precision != BITS_IN_JSAMPLE || info.Ss != 0 ||
        info.Se != DCTSIZE2 - 1 || info.Ah != 0 || info.Al != 0 || info.comps_in_scan != info.num_components) {
        return false;
    }
    for (int i = 0; i < info.comps_in_scan; ++i) {
        if (info.cur_comp_info[i] != &info.comp_info[i]) {
            return false;
        }
    }
    return true;
}

template <typename Table>
const Table* table_of(Table* const (&tables)[4], int number) {
    return number < 0 || number >= 4 ? nullptr : tables[number];
}

}  // namespace

std::optional<chroma_layout_t> chroma_layout_of(const jpeg_decompress_struct& info) {
    const jpeg_component_info* const c = info.comp_info;
    if (info.num_components == 1) {
        const bool plain = info.jpeg_color_space == JCS_GRAYSCALE && c[0].h_samp_factor == 1 && c[0].v_samp_factor == 1;
        return plain ? std::optional(chroma_layout_t::none) : std::nullopt;
    }
    if (info.num_components != 3 || info.jpeg_color_space != JCS_YCbCr || c[0].h_samp_factor > 2 ||
        c[0].v_samp_factor > 2 || c[1].h_samp_factor != c[2].h_samp_factor ||
        c[1].v_samp_factor != c[2].v_samp_factor) {
        return std::nullopt;
    }
    // Some cameras write 4:2:2 and 4:4:4 with factors that are twice as large as they need be.
    const bool same_width = c[0].h_samp_factor == c[1].h_samp_factor;
    const bool same_height = c[0].v_samp_factor == c[1].v_samp_factor;
    if (same_width && same_height) {
        return chroma_layout_t::full;
    }
    if (c[1].h_samp_factor != 1 || (!same_height && c[1].v_samp_factor != 1) || same_width) {
        return std::nullopt;
    }
    return same_height ? chroma_layout_t::half_width : chroma_layout_t::half_both;
}

bool baseline_decoder_t::start(const jpeg_decompress_struct& info) {
    if (info.err->num_warnings != 0 || !chroma_layout_of(info) || !is_plain_scan(info) || !read_tables(info)) {
        return false;
    }
    arrange_blocks(info);
    // libjpeg has read up to the scan.
    const JOCTET* const from = info.src->next_input_byte;
    return mcu_size_ <= scan_t::max_mcu_blocks &&
           scan_.start(from, from + info.src->bytes_in_buffer, info.restart_interval);
}

bool baseline_decoder_t::read_tables(const jpeg_decompress_struct& info) {
    for (size_t i = 0; i < static_cast<size_t>(info.num_components); ++i) {
        const jpeg_component_info& component = info.comp_info[i];
        const JHUFF_TBL* const dc = table_of(info.dc_huff_tbl_ptrs, component.dc_tbl_no);
        const JHUFF_TBL* const ac = table_of(info.ac_huff_tbl_ptrs, component.ac_tbl_no);
        const JQUANT_TBL* const factors = table_of(info.quant_tbl_ptrs, component.quant_tbl_no);
        if (dc == nullptr || ac == nullptr || factors == nullptr) {
            return false;
        }
        decoding_table_t& dc_table = dc_tables_[static_cast<size_t>(component.dc_tbl_no)];
        decoding_table_t& ac_table = ac_tables_[static_cast<size_t>(component.ac_tbl_no)];
        std::copy_n(factors->quantval, block_size, factors_[i].begin());
        const auto is_baseline = [](uint16_t factor) { return factor >= 1 && factor <= 255; };
        if (!dc_table.build(*dc, true) || !ac_table.build(*ac, false) ||
            !std::all_of(factors_[i].begin(), factors_[i].end(), is_baseline)) {
            return false;
        }
        scan_.components[i].dc = &dc_table;
        scan_.components[i].ac = &ac_table;
    }
    return true;
}

void baseline_decoder_t::arrange_blocks(const jpeg_decompress_struct& info) {
    const auto mcu_width = static_cast<JDIMENSION>(info.comp_info[0].h_samp_factor * DCTSIZE);
    const auto mcu_height = static_cast<JDIMENSION>(info.comp_info[0].v_samp_factor * DCTSIZE);
    mcus_wide_ = round_up(info.image_width, mcu_width) / mcu_width;
    mcu_rows_left_ = round_up(info.image_height, mcu_height) / mcu_height;
    block_row_count_ = 0;
    for (size_t i = 0; i < static_cast<size_t>(info.num_components); ++i) {
        for (size_t row = 0; row < static_cast<size_t>(info.comp_info[i].v_samp_factor); ++row) {
            block_row_t& blocks = block_rows_[block_row_count_++];
            blocks.component = i;
            blocks.row = row;
            blocks.mcu_blocks = static_cast<size_t>(info.comp_info[i].h_samp_factor);
            blocks.groups.fill({});
        }
    }
    order_.clear();
    for (size_t mcu = 0; mcu < batch_mcus; ++mcu) {
        for (size_t r = 0; r < block_row_count_; ++r) {
            block_row_t& row = block_rows_[r];
            for (size_t i = mcu * row.mcu_blocks; i < (mcu + 1) * row.mcu_blocks; ++i) {
                order_.push_back({&row.groups[i / group_blocks], static_cast<unsigned>(i % group_blocks),
                                  static_cast<unsigned>(row.component)});
            }
        }
    }
    mcu_size_ = order_.size() / batch_mcus;
}

bool baseline_decoder_t::read_rows(JSAMPARRAY const* planes) {
    for (size_t first = 0; first < mcus_wide_; first += batch_mcus) {
        const size_t count = std::min(batch_mcus, mcus_wide_ - first);
        if (!scan_.decode(order_.data(), count, mcu_size_)) {
            return false;
        }
        for (size_t i = 0; i < block_row_count_; ++i) {
            block_row_t& row = block_rows_[i];
            const size_t groups = round_up(count * row.mcu_blocks, group_blocks) / group_blocks;
            if (!inverse_dct(planes[row.component] + row.row * block_side, first * row.mcu_blocks * block_side,
                             row.groups.data(), groups, factors_[row.component].data())) {
                return false;
            }
            std::fill_n(row.groups.begin(), groups, coefficient_group_t());
        }
    }
    --mcu_rows_left_;
    return mcu_rows_left_ != 0 || scan_.is_complete();
}

}  // namespace libgr
