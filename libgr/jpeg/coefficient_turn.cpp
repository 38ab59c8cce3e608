#include "libgr/jpeg/coefficient_turn.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <optional>
#include <string_view>
#include <utility>

#include "libgr/image/round_up.h"

namespace libgr {

namespace {

// A turn as its steps, in this order.
struct steps_t {
    bool transpose;
    bool left_right;
    bool top_bottom;
};

std::optional<steps_t> steps_of(JXFORM_CODE transform) {
    switch (transform) {
        case JXFORM_NONE:
            return steps_t{false, false, false};
        case JXFORM_ROT_90:
            return steps_t{true, true, false};
        case JXFORM_ROT_180:
            return steps_t{false, true, true};
        case JXFORM_ROT_270:
            return steps_t{true, false, true};
        default:
            return std::nullopt;
    }
}

// iMCU size of the source in pixels. A picture of one component has iMCUs of one block, whatever its sampling factors.
struct imcu_size_t {
    explicit imcu_size_t(const jpeg_decompress_struct& source)
        : width(source.num_components == 1 ? DCTSIZE : source.max_h_samp_factor * DCTSIZE),
          height(source.num_components == 1 ? DCTSIZE : source.max_v_samp_factor * DCTSIZE) {}

    int width;
    int height;
};

// One component of the turned picture, in blocks.
struct turned_component_t {
    turned_component_t(const jpeg_decompress_struct& source, int index, bool transpose) {
        const jpeg_component_info& component = source.comp_info[index];
        const imcu_size_t imcu(source);
        const bool single = source.num_components == 1;
        width = component.width_in_blocks;
        height = component.height_in_blocks;
        h_factor = static_cast<JDIMENSION>(component.h_samp_factor);
        v_factor = static_cast<JDIMENSION>(component.v_samp_factor);
        mirror_width = source.image_width / static_cast<JDIMENSION>(imcu.width) * (single ? 1 : h_factor);
        mirror_height = source.image_height / static_cast<JDIMENSION>(imcu.height) * (single ? 1 : v_factor);
        if (transpose) {
            std::swap(width, height);
            std::swap(h_factor, v_factor);
            std::swap(mirror_width, mirror_height);
        }
    }

    JDIMENSION width;
    JDIMENSION height;
    JDIMENSION h_factor;
    JDIMENSION v_factor;
    JDIMENSION mirror_width;  // blocks in whole iMCUs
    JDIMENSION mirror_height;
};

template <bool transpose, bool left_right, bool top_bottom>
void turn_block(JCOEF* to, const JCOEF* from) {
    for (int v = 0; v < DCTSIZE; ++v) {
        for (int u = 0; u < DCTSIZE; ++u) {
            const JCOEF value = from[transpose ? u * DCTSIZE + v : v * DCTSIZE + u];
            const bool negate = (left_right && u % 2 != 0) != (top_bottom && v % 2 != 0);
            to[v * DCTSIZE + u] = static_cast<JCOEF>(negate ? -value : value);
        }
    }
}

using turn_block_t = void (*)(JCOEF*, const JCOEF*);

turn_block_t turn_block_of(bool transpose, bool left_right, bool top_bottom) {
    static constexpr turn_block_t turns[2][2][2] = {
        {{turn_block<false, false, false>, turn_block<false, false, true>},
         {turn_block<false, true, false>, turn_block<false, true, true>}},
        {{turn_block<true, false, false>, turn_block<true, false, true>},
         {turn_block<true, true, false>, turn_block<true, true, true>}},
    };
    return turns[transpose ? 1 : 0][left_right ? 1 : 0][top_bottom ? 1 : 0];
}

// Block rows of the turned picture that are made together: a transposed one reads a column of the source's, and
// neighbouring blocks of a column lie far apart.
constexpr JDIMENSION strip_rows = 8;
static_assert(strip_rows >= MAX_SAMP_FACTOR, "libjpeg's compressor reads an iMCU's block rows at once");

JBLOCKARRAY block_rows(jpeg_decompress_struct& info, jvirt_barray_ptr array, JDIMENSION y, JDIMENSION count,
                       boolean writable) {
    return info.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&info), array, y, count, writable);
}

// libjpeg clears a row that no scan has filled at every look at it, until somebody asks for it to write.
void take_over_rows(jpeg_decompress_struct& info, jvirt_barray_ptr array, JDIMENSION count) {
    for (JDIMENSION y = 0; y < count; ++y) {
        static_cast<void>(block_rows(info, array, y, 1, TRUE));
    }
}

// Turns block rows `top` on into `to_rows`. One row of the source at a time: libjpeg's arrays are asked once a row.
void turn_block_rows(jpeg_decompress_struct& info, JBLOCKROW* to_rows, JDIMENSION top, JDIMENSION count,
                     jvirt_barray_ptr from, const turned_component_t& size, const steps_t& steps) {
    const auto mirrored_x = [&](JDIMENSION x) { return steps.left_right && x < size.mirror_width; };
    const auto mirrored_y = [&](JDIMENSION y) { return steps.top_bottom && y < size.mirror_height; };
    const auto from_x = [&](JDIMENSION x) { return mirrored_x(x) ? size.mirror_width - 1 - x : x; };
    const auto from_y = [&](JDIMENSION y) { return mirrored_y(y) ? size.mirror_height - 1 - y : y; };
    const auto turn = [&](JDIMENSION x, JDIMENSION y, const JBLOCK& block) {
        turn_block_of(steps.transpose, mirrored_x(x), mirrored_y(y))(to_rows[y - top][x], block);
    };
    if (steps.transpose) {
        for (JDIMENSION x = 0; x < size.width; ++x) {
            const JBLOCK* const row = block_rows(info, from, from_x(x), 1, FALSE)[0];
            for (JDIMENSION y = top; y < top + count; ++y) {
                turn(x, y, row[from_y(y)]);
            }
        }
    } else {
        for (JDIMENSION y = top; y < top + count; ++y) {
            const JBLOCK* const row = block_rows(info, from, from_y(y), 1, FALSE)[0];
            for (JDIMENSION x = 0; x < size.width; ++x) {
                turn(x, y, row[from_x(x)]);
            }
        }
    }
}

void turn_component(jpeg_decompress_struct& info, jvirt_barray_ptr to, jvirt_barray_ptr from,
                    const turned_component_t& size, const steps_t& steps) {
    take_over_rows(info, from, steps.transpose ? size.width : size.height);
    const JDIMENSION padded_width = round_up(size.width, size.h_factor);
    const JDIMENSION padded_height = round_up(size.height, size.v_factor);
    for (JDIMENSION top = 0; top < padded_height; top += strip_rows) {
        const JDIMENSION rows = std::min(strip_rows, padded_height - top);
        const JDIMENSION count = top < size.height ? std::min(rows, size.height - top) : 0;
        JBLOCKROW* const to_rows = block_rows(info, to, top, rows, TRUE);
        turn_block_rows(info, to_rows, top, count, from, size, steps);
        // What fills the last iMCUs has no source.
        for (JDIMENSION y = 0; y < rows; ++y) {
            const JDIMENSION filled = y < count ? size.width : 0;
            std::memset(to_rows[y][filled], 0, (padded_width - filled) * sizeof(JBLOCK));
        }
    }
}

// The compressor's default, one interleaved scan, takes no more than this; a source in several scans may have more.
bool fits_one_scan(const jpeg_compress_struct& info) {
    int blocks = 0;
    for (int i = 0; i < info.num_components; ++i) {
        blocks += info.comp_info[i].h_samp_factor * info.comp_info[i].v_samp_factor;
    }
    return info.num_components == 1 || (info.num_components <= MAX_COMPS_IN_SCAN && blocks <= C_MAX_BLOCKS_IN_MCU);
}

void write_one_scan_a_component(jpeg_compress_struct& info) {
    auto* const scans = static_cast<jpeg_scan_info*>(
        info.mem->alloc_small(reinterpret_cast<j_common_ptr>(&info), JPOOL_IMAGE,
                              static_cast<size_t>(info.num_components) * sizeof(jpeg_scan_info)));
    for (int i = 0; i < info.num_components; ++i) {
        scans[i] = {1, {i}, 0, DCTSIZE2 - 1, 0, 0};
    }
    info.scan_info = scans;
    info.num_scans = info.num_components;
}

void transpose_table(JQUANT_TBL& table) {
    for (int v = 0; v < DCTSIZE; ++v) {
        for (int u = 0; u < v; ++u) {
            std::swap(table.quantval[v * DCTSIZE + u], table.quantval[u * DCTSIZE + v]);
        }
    }
}

// Takes a number, if there is one, off the front of `text`. False when it is out of range.
bool take_number(std::string_view& text, JDIMENSION& value, bool& found) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    found = end != text.data();
    text.remove_prefix(static_cast<size_t>(end - text.data()));
    return error != std::errc::result_out_of_range;
}

bool take_offset(std::string_view& text, JDIMENSION& value, bool& from_far_edge) {
    if (text.empty() || (text.front() != '+' && text.front() != '-')) {
        return false;
    }
    from_far_edge = text.front() == '-';
    text.remove_prefix(1);
    bool found = false;
    return take_number(text, value, found) && found;
}

}  // namespace

bool jtransform_parse_crop_spec(jpeg_transform_info& request, const char* spec) {
    std::string_view text(spec);
    crop_request_t parsed;
    bool found = false;
    if (text.empty() || !take_number(text, parsed.width, found) || (found && parsed.width == 0)) {
        return false;
    }
    if (!text.empty() && (text.front() == 'x' || text.front() == 'X')) {
        text.remove_prefix(1);
        if (!take_number(text, parsed.height, found) || !found || parsed.height == 0) {
            return false;
        }
    }
    if (!text.empty() && !(take_offset(text, parsed.x_offset, parsed.from_right) &&
                           take_offset(text, parsed.y_offset, parsed.from_bottom) && text.empty())) {
        return false;
    }
    request.crop = true;
    request.crop_request = parsed;
    return true;
}

bool jtransform_perfect_transform(JDIMENSION image_width, JDIMENSION image_height, int mcu_width, int mcu_height,
                                  JXFORM_CODE transform) {
    const auto steps = steps_of(transform);
    if (!steps) {
        return false;
    }
    const bool whole_columns = image_width % static_cast<JDIMENSION>(mcu_width) == 0;
    const bool whole_rows = image_height % static_cast<JDIMENSION>(mcu_height) == 0;
    // What transposing makes the turned picture's columns are the source's rows.
    return (!steps->left_right || (steps->transpose ? whole_rows : whole_columns)) &&
           (!steps->top_bottom || (steps->transpose ? whole_columns : whole_rows));
}

bool jtransform_request_workspace(jpeg_decompress_struct& source, jpeg_transform_info& request) {
    const auto steps = steps_of(request.transform);
    const imcu_size_t imcu(source);
    if (!steps || request.trim || request.force_grayscale || request.crop ||
        (request.perfect && !jtransform_perfect_transform(source.image_width, source.image_height, imcu.width,
                                                          imcu.height, request.transform))) {
        return false;
    }
    request.workspace_coef_arrays = nullptr;
    if (request.transform == JXFORM_NONE) {
        return true;
    }
    const auto common = reinterpret_cast<j_common_ptr>(&source);
    auto* const arrays = static_cast<jvirt_barray_ptr*>(source.mem->alloc_small(
        common, JPOOL_IMAGE, static_cast<size_t>(source.num_components) * sizeof(jvirt_barray_ptr)));
    for (int i = 0; i < source.num_components; ++i) {
        const turned_component_t size(source, i, steps->transpose);
        arrays[i] = source.mem->request_virt_barray(common, JPOOL_IMAGE, FALSE, round_up(size.width, size.h_factor),
                                                    round_up(size.height, size.v_factor), strip_rows);
    }
    request.workspace_coef_arrays = arrays;
    return true;
}

jvirt_barray_ptr* jtransform_adjust_parameters(jpeg_decompress_struct& source, jpeg_compress_struct& turned,
                                               jvirt_barray_ptr* source_arrays, const jpeg_transform_info& request) {
    const auto steps = steps_of(request.transform);
    if (steps && steps->transpose) {
        turned.image_width = source.image_height;
        turned.image_height = source.image_width;
        std::swap(turned.X_density, turned.Y_density);
        for (int i = 0; i < turned.num_components; ++i) {
            std::swap(turned.comp_info[i].h_samp_factor, turned.comp_info[i].v_samp_factor);
        }
        for (JQUANT_TBL* const table : turned.quant_tbl_ptrs) {
            if (table != nullptr) {
                transpose_table(*table);
            }
        }
    }
#if JPEG_LIB_VERSION >= 70
    turned.jpeg_width = turned.image_width;
    turned.jpeg_height = turned.image_height;
    turned.min_DCT_h_scaled_size = DCTSIZE;
    turned.min_DCT_v_scaled_size = DCTSIZE;
#endif
    if (!fits_one_scan(turned)) {
        write_one_scan_a_component(turned);
    }
    return request.workspace_coef_arrays != nullptr ? request.workspace_coef_arrays : source_arrays;
}

void jtransform_execute_transform(jpeg_decompress_struct& source, jvirt_barray_ptr* source_arrays,
                                  const jpeg_transform_info& request) {
    const auto steps = steps_of(request.transform);
    if (!steps || request.workspace_coef_arrays == nullptr) {
        return;
    }
    for (int i = 0; i < source.num_components; ++i) {
        turn_component(source, request.workspace_coef_arrays[i], source_arrays[i],
                       turned_component_t(source, i, steps->transpose), *steps);
    }
}

void jcopy_markers_setup(jpeg_decompress_struct& source, JCOPY_OPTION option) {
    if (option == JCOPYOPT_NONE) {
        return;
    }
    jpeg_save_markers(&source, JPEG_COM, 0xFFFF);
    for (int n = 0; option == JCOPYOPT_ALL && n < 16; ++n) {
        jpeg_save_markers(&source, JPEG_APP0 + n, 0xFFFF);
    }
}

void jcopy_markers_execute(const jpeg_decompress_struct& source, jpeg_compress_struct& turned, JCOPY_OPTION option) {
    const auto begins_with = [](const jpeg_marker_struct& segment, std::string_view text) {
        return segment.data_length >= text.size() && std::memcmp(segment.data, text.data(), text.size()) == 0;
    };
    for (const auto* saved = source.marker_list; saved != nullptr; saved = saved->next) {
        const bool wanted = option == JCOPYOPT_ALL || (option == JCOPYOPT_COMMENTS && saved->marker == JPEG_COM);
        const bool written =
            (turned.write_JFIF_header != FALSE && saved->marker == JPEG_APP0 &&
             begins_with(*saved, std::string_view("JFIF\0", 5))) ||
            (turned.write_Adobe_marker != FALSE && saved->marker == JPEG_APP0 + 14 && begins_with(*saved, "Adobe"));
        if (wanted && !written && saved->data_length <= max_segment_bytes) {
            jpeg_write_marker(&turned, saved->marker, saved->data, saved->data_length);
        }
    }
}

}  // namespace libgr
