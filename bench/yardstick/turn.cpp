#include "bench/yardstick/turn.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace yardstick {

namespace {

template <bool swapped, bool negative_columns, bool negative_rows>
void turn_block(JCOEF* to, const JCOEF* from) {
    for (int y = 0; y < DCTSIZE; ++y) {
        for (int x = 0; x < DCTSIZE; ++x) {
            const JCOEF value = swapped ? from[DCTSIZE * x + y] : from[DCTSIZE * y + x];
            const bool negative = (negative_columns && x % 2 != 0) != (negative_rows && y % 2 != 0);
            to[DCTSIZE * y + x] = static_cast<JCOEF>(negative ? -value : value);
        }
    }
}

using turn_block_t = void (*)(JCOEF*, const JCOEF*);

// By sides swapped, mirrored left-right, mirrored top-bottom.
constexpr turn_block_t turn_blocks[2][2][2] = {
    {{turn_block<false, false, false>, turn_block<false, false, true>},
     {turn_block<false, true, false>, turn_block<false, true, true>}},
    {{turn_block<true, false, false>, turn_block<true, false, true>},
     {turn_block<true, true, false>, turn_block<true, true, true>}},
};

// The rows of a component's blocks, all of which libjpeg has in memory.
std::vector<JBLOCKROW> rows_of(jpeg_decompress_struct& info, jvirt_barray_ptr blocks, JDIMENSION count, bool write) {
    std::vector<JBLOCKROW> rows(count);
    for (JDIMENSION y = 0; y < count; ++y) {
        rows[y] = info.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&info), blocks, y, 1, write)[0];
    }
    return rows;
}

struct plan_t {
    bool swapped;
    bool from_right;
    bool from_bottom;
    JDIMENSION columns;  // of blocks in the turned component
    JDIMENSION rows;
    JDIMENSION whole_columns;  // in whole iMCUs, which alone are mirrored
    JDIMENSION whole_rows;
};

void turn_component(const plan_t& plan, const std::vector<JBLOCKROW>& to, const std::vector<JBLOCKROW>& from) {
    constexpr JDIMENSION tile = 8;  // blocks; keeps both sides in the processor's cache
    for (JDIMENSION top = 0; top < plan.rows; top += tile) {
        for (JDIMENSION left = 0; left < plan.columns; left += tile) {
            for (JDIMENSION x = left; x < std::min(left + tile, plan.columns); ++x) {
                const bool mirrored_x = plan.from_right && x < plan.whole_columns;
                const JDIMENSION from_x = mirrored_x ? plan.whole_columns - 1 - x : x;
                for (JDIMENSION y = top; y < std::min(top + tile, plan.rows); ++y) {
                    const bool mirrored_y = plan.from_bottom && y < plan.whole_rows;
                    const JDIMENSION from_y = mirrored_y ? plan.whole_rows - 1 - y : y;
                    turn_blocks[plan.swapped][mirrored_x][mirrored_y](
                        to[y][x], plan.swapped ? from[from_x][from_y] : from[from_y][from_x]);
                }
            }
        }
    }
}

void transpose_tables(jpeg_compress_struct& info) {
    for (JQUANT_TBL* const table : info.quant_tbl_ptrs) {
        for (int i = 0; table != nullptr && i < DCTSIZE; ++i) {
            for (int j = 0; j < i; ++j) {
                std::swap(table->quantval[DCTSIZE * i + j], table->quantval[DCTSIZE * j + i]);
            }
        }
    }
}

}  // namespace

void stream_t::open(jpeg_compress_struct& encoder) {
    jpeg_mem_dest(&encoder, &begin, &size);
}

void turn(stream_t& turned, bytes_t file, unsigned count) {
    jpeg_error_mgr errors;
    jpeg_decompress_struct source{};
    jpeg_compress_struct target{};
    source.err = target.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&source);
    jpeg_create_compress(&target);
    jpeg_mem_src(&source, file.data(), file.size());
    jpeg_read_header(&source, TRUE);

    plan_t plan{count % 2 != 0, count != 3, count != 1, 0, 0, 0, 0};
    const auto turned_pair = [&plan](auto h, auto v) { return plan.swapped ? std::pair(v, h) : std::pair(h, v); };
    const auto [width, height] = turned_pair(source.image_width, source.image_height);
    const auto [max_h, max_v] = turned_pair(source.max_h_samp_factor, source.max_v_samp_factor);
    const JDIMENSION imcu_width = static_cast<JDIMENSION>(max_h) * DCTSIZE;
    const JDIMENSION imcu_height = static_cast<JDIMENSION>(max_v) * DCTSIZE;
    std::vector<plan_t> plans;
    std::vector<jvirt_barray_ptr> arrays;
    for (int c = 0; c < source.num_components; ++c) {
        const auto [h, v] = turned_pair(source.comp_info[c].h_samp_factor, source.comp_info[c].v_samp_factor);
        const auto across = static_cast<JDIMENSION>(h);
        const auto down = static_cast<JDIMENSION>(v);
        plan.columns = (width + imcu_width - 1) / imcu_width * across;
        plan.rows = (height + imcu_height - 1) / imcu_height * down;
        plan.whole_columns = width / imcu_width * across;
        plan.whole_rows = height / imcu_height * down;
        plans.push_back(plan);
        arrays.push_back(source.mem->request_virt_barray(reinterpret_cast<j_common_ptr>(&source), JPOOL_IMAGE, FALSE,
                                                         plan.columns, plan.rows, down));
    }
    jvirt_barray_ptr* const read = jpeg_read_coefficients(&source);
    jpeg_copy_critical_parameters(&source, &target);
    if (plan.swapped) {
        std::swap(target.image_width, target.image_height);
        transpose_tables(target);
        for (int c = 0; c < target.num_components; ++c) {
            std::swap(target.comp_info[c].h_samp_factor, target.comp_info[c].v_samp_factor);
        }
    }
    turned.open(target);
    jpeg_write_coefficients(&target, arrays.data());
    for (size_t c = 0; c < plans.size(); ++c) {
        const JDIMENSION source_rows = plan.swapped ? plans[c].columns : plans[c].rows;
        turn_component(plans[c], rows_of(source, arrays[c], plans[c].rows, true),
                       rows_of(source, read[c], source_rows, false));
    }
    jpeg_finish_compress(&target);
    jpeg_finish_decompress(&source);
    jpeg_destroy_compress(&target);
    jpeg_destroy_decompress(&source);
}

}  // namespace yardstick
