#include "libgr/pyramid/row_sources.h"

#include <algorithm>

#include "libgr/image/halve_rows.h"
#include "libgr/image/round_up.h"
#include "libgr/pyramid/ycc_rows.h"

namespace libgr {

namespace {

constexpr size_t row_alignment = 64;  // a cache line, and the widest vectors

}  // namespace

bool planes_source_t::fits(const jpeg_decompress_struct& info) {
#ifdef LIBJPEG_TURBO_VERSION
    const std::optional<chroma_layout_t> layout = chroma_layout_of(info);
    if (!layout || info.out_color_space != (*layout == chroma_layout_t::none ? JCS_GRAYSCALE : JCS_RGB)) {
        return false;
    }
    // Narrower chroma is not interpolated.
    constexpr JDIMENSION smallest = 4 * DCTSIZE;
    return *layout == chroma_layout_t::none || *layout == chroma_layout_t::full ||
           (info.image_width >= smallest && info.image_height >= smallest);
#else
    // Other libraries upsample in other ways.
    return info.num_components < 0;
#endif
}

bool planes_source_t::prepare(const jpeg_decompress_struct& info) {
    layout_ = *chroma_layout_of(info);
    const bool halved_width = layout_ == chroma_layout_t::half_width || layout_ == chroma_layout_t::half_both;
    imcu_rows_ = static_cast<JDIMENSION>(info.comp_info[0].v_samp_factor * DCTSIZE);
    chroma_imcu_rows_ = layout_ == chroma_layout_t::half_both ? imcu_rows_ / 2
                        : layout_ == chroma_layout_t::none    ? 0
                                                              : imcu_rows_;
    chroma_width_ = halved_width ? (info.image_width + 1) / 2 : info.image_width;
    chroma_height_ = layout_ == chroma_layout_t::half_both ? (info.image_height + 1) / 2 : info.image_height;
    next_row_ = info.image_height % 2;

    const size_t chroma_stride = round_up(chroma_width_, row_alignment);
    const size_t luma_stride = (halved_width ? 2 : 1) * chroma_stride;
    // One value more at either end.
    const size_t upsampled_stride = round_up((chroma_width_ + 2) * sizeof(int16_t), row_alignment) + row_alignment;
    if (!memory_.resize(2 * imcu_rows_ * luma_stride + 4 * chroma_imcu_rows_ * chroma_stride + 4 * upsampled_stride)) {
        return false;
    }
    unsigned char* free = memory_.begin();
    const auto take = [&free](size_t size) {
        unsigned char* const row = free;
        free += size;
        return row;
    };
    std::generate_n(y_.begin(), 2 * imcu_rows_, [&] { return take(luma_stride); });
    for (chroma_t* const chroma : {&cb_, &cr_}) {
        std::generate_n(chroma->rows.begin(), 2 * chroma_imcu_rows_, [&] { return take(chroma_stride); });
        for (int16_t*& row : chroma->upsampled) {
            row = reinterpret_cast<int16_t*>(take(upsampled_stride) + row_alignment);
        }
    }
    return true;
}

bool planes_source_t::read(decompressor_t& reader, baseline_decoder_t* decoder, reduced_level_t& level) {
    jpeg_decompress_struct& info = reader.info;
    if (decoder == nullptr) {
        info.raw_data_out = TRUE;
        jpeg_start_decompress(&info);
    }
    JDIMENSION end = 0;
    for (JDIMENSION half = 0; end < info.image_height; half = 1 - half) {
        JSAMPARRAY planes[] = {y_.data() + half * imcu_rows_, cb_.rows.data() + half * chroma_imcu_rows_,
                               cr_.rows.data() + half * chroma_imcu_rows_};
        const bool read = decoder != nullptr
                              ? decoder->read_rows(planes)
                              : jpeg_read_raw_data(&info, planes, imcu_rows_) != 0 && reader.warnings() == 0;
        if (!read) {
            return false;
        }
        end = std::min(end + imcu_rows_, info.image_height);
        // The last row's chroma depends on the row below.
        const bool complete = layout_ != chroma_layout_t::half_both || end == info.image_height;
        halve_rows_up_to(complete ? end : end - 1, level);
    }
    if (decoder == nullptr) {
        jpeg_finish_decompress(&info);
    }
    return true;
}

void planes_source_t::halve_rows_up_to(JDIMENSION end, reduced_level_t& level) {
    for (; next_row_ + 1 < end; next_row_ += 2) {
        halve(level);
        level.take_row();
    }
}

void planes_source_t::halve(reduced_level_t& level) {
    const plane_rows_t& to = level.row_to_fill();
    const auto luma = [this](unsigned i) { return y_[(next_row_ + i) % (2 * imcu_rows_)]; };
    if (layout_ == chroma_layout_t::none) {
        (void)halve_rows(to[0], luma(0), luma(1), level.width(), 1);
        return;
    }
    if (layout_ == chroma_layout_t::full) {
        const auto row = [&](unsigned i) {
            const size_t index = (next_row_ + i) % (2 * chroma_imcu_rows_);
            return plane_rows_t{luma(i), cb_.rows[index], cr_.rows[index]};
        };
        halve_full_ycc_rows(to.data(), row(0).data(), row(1).data(), level.width());
        return;
    }
    for (unsigned i = 0; i < 2; ++i) {
        upsample(cb_, next_row_ + i, i);
        upsample(cr_, next_row_ + i, i);
    }
    const auto row = [&](unsigned i) { return ycc_row_t{luma(i), cb_.upsampled[i], cr_.upsampled[i]}; };
    halve_ycc_rows(to.data(), row(0), row(1), level.width(), layout_ == chroma_layout_t::half_both);
}

void planes_source_t::upsample(chroma_t& chroma, JDIMENSION y, unsigned which) const {
    const auto row = [&](JDIMENSION index) { return chroma.rows[index % (2 * chroma_imcu_rows_)]; };
    if (layout_ == chroma_layout_t::half_width) {
        copy_chroma_row(chroma.upsampled[which], row(y), chroma_width_);
        return;
    }
    const JDIMENSION nearer = y / 2;
    const JDIMENSION above = nearer == 0 ? 0 : nearer - 1;
    const JDIMENSION below = std::min(nearer + 1, chroma_height_ - 1);
    sum_chroma_rows(chroma.upsampled[which], row(nearer), row(y % 2 == 0 ? above : below), chroma_width_);
}

bool rows_source_t::prepare(const jpeg_decompress_struct& info) {
    gray_ = info.num_components == 1;
    stride_ = round_up(size_t{info.image_width} * (gray_ ? 1 : 3), row_alignment);
    return memory_.resize(2 * stride_);
}

bool rows_source_t::read(decompressor_t& reader, reduced_level_t& level) {
    jpeg_decompress_struct& info = reader.info;
    jpeg_start_decompress(&info);
    if (info.output_components != (gray_ ? 1 : 3) || stride_ / (gray_ ? 1 : 3) < info.output_width) {
        ERREXIT(&info, JERR_WIDTH_OVERFLOW);
    }
    const JDIMENSION dropped = info.output_height % 2;
    while (info.output_scanline < info.output_height) {
        const bool upper = info.output_scanline < dropped || (info.output_scanline - dropped) % 2 == 0;
        JSAMPROW row = memory_.begin() + (upper ? 0 : stride_);
        if (jpeg_read_scanlines(&info, &row, 1) == 0 || reader.warnings() != 0) {
            return false;
        }
        if (!upper) {
            halve(level);
        }
    }
    jpeg_finish_decompress(&info);
    return true;
}

void rows_source_t::halve(reduced_level_t& level) {
    const unsigned char* const row0 = memory_.begin();
    const unsigned char* const row1 = row0 + stride_;
    const plane_rows_t& to = level.row_to_fill();
    if (gray_) {
        (void)halve_rows(to[0], row0, row1, level.width(), 1);
    } else {
        halve_rgb_rows(to.data(), row0, row1, level.width());
    }
    level.take_row();
}

}  // namespace libgr
