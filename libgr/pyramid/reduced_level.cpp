#include "libgr/pyramid/reduced_level.h"

#include <algorithm>
#include <cstring>

#include "libgr/image/halve_rows.h"
#include "libgr/image/round_up.h"
#include "libgr/jpeg/encoding.h"
#include "libgr/jpeg/saved_segments.h"
#include "libgr/pyramid/ycc_rows.h"

namespace libgr {

namespace {

constexpr size_t row_alignment = 64;  // a cache line, and the widest vectors

}  // namespace

bool reduced_level_t::prepare(JDIMENSION width, JDIMENSION height, unsigned components, reduced_level_t* next) {
    width_ = width;
    height_ = height;
    components_ = components;
    next_ = next;
    // Room for the columns that fill the last block, and for whole groups of blocks.
    const size_t stride = round_up(width, row_alignment);
    const size_t rows = components == 1 ? DCTSIZE : 2 * 3 + strip_rows + 2 * DCTSIZE;
    if (!memory_.resize(rows * stride)) {
        return false;
    }
    unsigned char* free = memory_.begin();
    const auto take = [&free, stride] {
        unsigned char* const row = free;
        free += stride;
        return row;
    };
    for (JDIMENSION i = 0; i < ring_rows(); ++i) {
        std::generate_n(rows_[i].begin(), components, take);
    }
    if (components != 1) {
        std::generate(y_.begin(), y_.end(), take);
        std::generate(cb_.begin(), cb_.end(), take);
        std::generate(cr_.begin(), cr_.end(), take);
    }
    return true;
}

void reduced_level_t::start(int quality, const jpeg_marker_struct* segments) {
    if (encoder_) {
        encoder_->start(width_, height_, segments);
        return;
    }
    writer_->create();
    jpeg_compress_struct& info = writer_->info;
    set_up_encoder(info, {width_, height_, components_ == 1 ? JCS_GRAYSCALE : JCS_RGB, static_cast<int>(components_),
                          quality, true});
    info.raw_data_in = TRUE;
    jpeg_start_compress(&info, TRUE);
    for (; segments != nullptr; segments = segments->next) {
        if (is_carried_over(*segments)) {
            jpeg_write_marker(&info, segments->marker, segments->data, segments->data_length);
        }
    }
}

void reduced_level_t::take_row() {
    const JDIMENSION index = rows_taken_++;
    const plane_rows_t& row = rows_[index % ring_rows()];
    const JDIMENSION dropped = height_ % 2;
    if (next_ != nullptr && index > dropped && (index - dropped) % 2 != 0) {
        halve_pair(rows_[(index - 1) % ring_rows()], row);
    }
    if (is_encoded()) {
        repeat_last_column(row);
        const bool last = rows_taken_ == height_;
        if (components_ == 1) {
            encode_gray(last);
        } else {
            encode_color(last);
        }
    }
}

void reduced_level_t::halve_pair(const plane_rows_t& upper, const plane_rows_t& lower) {
    const plane_rows_t& to = next_->row_to_fill();
    for (unsigned c = 0; c < components_; ++c) {
        (void)halve_rows(to[c], upper[c], lower[c], next_->width_, 1);
    }
    next_->take_row();
}

// Fills the last block, as libjpeg does.
void reduced_level_t::repeat_last_column(const plane_rows_t& row) const {
    const size_t filled = round_up(width_, components_ == 1 ? DCTSIZE : 2 * DCTSIZE);
    for (unsigned c = 0; c < components_; ++c) {
        std::memset(row[c] + width_, row[c][width_ - 1], filled - width_);
    }
}

void reduced_level_t::encode_gray(bool last) {
    const JDIMENSION end = (rows_taken_ - 1) % DCTSIZE + 1;
    if (!last && end != DCTSIZE) {
        return;
    }
    std::array<JSAMPROW, DCTSIZE> strip{};
    for (JDIMENSION i = 0; i < strip.size(); ++i) {
        strip[i] = rows_[std::min(i, end - 1)][0];  // libjpeg repeats the last row, too
    }
    JSAMPARRAY planes[] = {strip.data()};
    encode_strip(planes);
}

void reduced_level_t::encode_color(bool last) {
    const bool upper = rows_taken_ % 2 != 0;
    if (upper && !last) {
        return;
    }
    const JDIMENSION end = (rows_taken_ - 1) % strip_rows + 1;
    const JDIMENSION pair = (end - 1) / 2;
    const plane_rows_t& row0 = rows_[0];
    const plane_rows_t& row1 = rows_[upper ? 0 : 1];
    convert_rgb_rows({y_[2 * pair], y_[2 * pair + 1], cb_[pair], cr_[pair]}, row0.data(), row1.data(),
                     round_up(width_, 2 * DCTSIZE));
    if (!last && end != strip_rows) {
        return;
    }
    std::array<JSAMPROW, strip_rows> y{};
    std::array<JSAMPROW, DCTSIZE> cb{};
    std::array<JSAMPROW, DCTSIZE> cr{};
    for (JDIMENSION i = 0; i < strip_rows; ++i) {
        y[i] = y_[std::min(i, end - 1)];
    }
    for (JDIMENSION i = 0; i < DCTSIZE; ++i) {
        cb[i] = cb_[std::min(i, pair)];
        cr[i] = cr_[std::min(i, pair)];
    }
    JSAMPARRAY planes[] = {y.data(), cb.data(), cr.data()};
    encode_strip(planes);
}

void reduced_level_t::encode_strip(JSAMPARRAY* planes) {
    if (encoder_) {
        encoder_->take_strip(planes);
    } else {
        (void)jpeg_write_raw_data(&writer_->info, planes, components_ == 1 ? DCTSIZE : strip_rows);
    }
}

bool reduced_level_t::finish() {
    if (encoder_) {
        return encoder_->finish();
    }
    jpeg_finish_compress(&writer_->info);
    return true;
}

}  // namespace libgr
