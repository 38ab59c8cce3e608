#include "bench/yardstick/levels.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "libgr/image/halve_rows.h"
#include "libgr/image/round_up.h"
#include "libgr/pyramid/ycc_rows.h"

namespace yardstick {

namespace {

constexpr int quality = 100;
constexpr size_t alignment = 64;

size_t row_bytes(size_t width) {
    return libgr::round_up(width + alignment, alignment);
}

// Cuts rows off a piece of memory.
class row_cutter_t {
  public:
    row_cutter_t(std::unique_ptr<unsigned char[]>& memory, size_t bytes)
        : next_((memory = std::make_unique_for_overwrite<unsigned char[]>(bytes)).get()) {}
    unsigned char* take(size_t bytes) { return std::exchange(next_, next_ + bytes); }

  private:
    unsigned char* next_;
};

// The decoder's planes, of which two iMCU rows are kept, and the chroma of two rows in between.
class planes_t {
  public:
    explicit planes_t(const jpeg_decompress_struct& decoder)
        : summed_(decoder.comp_info[0].v_samp_factor == 2),
          full_(decoder.comp_info[0].h_samp_factor == 1),
          imcu_rows_(summed_ ? 2 * DCTSIZE : DCTSIZE),
          chroma_width_(full_ ? decoder.image_width : (decoder.image_width + 1) / 2),
          chroma_height_(summed_ ? (decoder.image_height + 1) / 2 : decoder.image_height) {
        const size_t luma = row_bytes(decoder.image_width);
        const size_t chroma = row_bytes(chroma_width_);
        row_cutter_t cutter(memory_, 4 * DCTSIZE * (luma + chroma) + 4 * (2 * chroma + alignment));
        std::generate_n(y_, 2 * imcu_rows_, [&] { return cutter.take(luma); });
        for (auto& rows : chroma_) {
            std::generate_n(rows, 2 * DCTSIZE, [&] { return cutter.take(chroma); });
        }
        for (auto& rows : upsampled_) {
            for (int16_t*& row : rows) {
                row = reinterpret_cast<int16_t*>(cutter.take(2 * chroma + alignment) + alignment);
            }
        }
    }

    // Decodes the whole picture into the first level.
    void read(jpeg_decompress_struct& decoder, level_t& level) {
        JDIMENSION next = decoder.image_height % 2;  // rows pair from the bottom
        for (JDIMENSION half = 0; decoder.output_scanline < decoder.output_height; half = 1 - half) {
            JSAMPARRAY planes[] = {y_ + half * imcu_rows_, chroma_[0] + half * DCTSIZE, chroma_[1] + half * DCTSIZE};
            jpeg_read_raw_data(&decoder, planes, imcu_rows_);
            // In 4:2:0 the last row waits for the chroma below it.
            const bool last = decoder.output_scanline >= decoder.output_height;
            const JDIMENSION end = last ? decoder.output_height : decoder.output_scanline - (summed_ ? 1 : 0);
            for (; next + 1 < end; next += 2) {
                halve(next, level);
                level.take_row();
            }
        }
    }

  private:
    void halve(JDIMENSION y, level_t& level) {
        if (full_) {
            const auto planes = [this](JDIMENSION at) {
                return std::array{y_[at % (2 * imcu_rows_)], chroma_[0][at % (2 * DCTSIZE)],
                                  chroma_[1][at % (2 * DCTSIZE)]};
            };
            libgr::halve_full_ycc_rows(level.row_to_fill(), planes(y).data(), planes(y + 1).data(), level.width());
            return;
        }
        const libgr::ycc_row_t upper = row(y);
        libgr::halve_ycc_rows(level.row_to_fill(), upper, row(y + 1), level.width(), summed_);
    }

    libgr::ycc_row_t row(JDIMENSION y) {
        for (int c = 0; c < 2; ++c) {
            const auto chroma = [this, c](JDIMENSION at) { return chroma_[c][at % (2 * DCTSIZE)]; };
            if (summed_) {
                const JDIMENSION nearer = y / 2;
                const JDIMENSION above = nearer == 0 ? 0 : nearer - 1;
                const JDIMENSION farther = y % 2 == 0 ? above : std::min(nearer + 1, chroma_height_ - 1);
                libgr::sum_chroma_rows(upsampled_[y % 2][c], chroma(nearer), chroma(farther), chroma_width_);
            } else {
                libgr::copy_chroma_row(upsampled_[y % 2][c], chroma(y), chroma_width_);
            }
        }
        return {y_[y % (2 * imcu_rows_)], upsampled_[y % 2][0], upsampled_[y % 2][1]};
    }

    bool summed_;  // 4:2:0
    bool full_;    // 4:4:4
    JDIMENSION imcu_rows_;
    JDIMENSION chroma_width_;
    JDIMENSION chroma_height_;
    std::unique_ptr<unsigned char[]> memory_;
    JSAMPROW y_[4 * DCTSIZE];
    JSAMPROW chroma_[2][2 * DCTSIZE];
    int16_t* upsampled_[2][2];
};

bool fits(const jpeg_decompress_struct& decoder) {
    const jpeg_component_info* const c = decoder.comp_info;
    return decoder.num_components == 3 && decoder.jpeg_color_space == JCS_YCbCr && c[0].h_samp_factor <= 2 &&
           c[0].v_samp_factor <= c[0].h_samp_factor && c[1].h_samp_factor * c[1].v_samp_factor == 1 &&
           c[2].h_samp_factor * c[2].v_samp_factor == 1;
}

}  // namespace

level_t::level_t(JDIMENSION width, JDIMENSION height)
    : width_(width), height_(height), stream_(size_t{width} * height * 3 / 2 + 0x20000) {
    encoder_.err = jpeg_std_error(&errors_);
    jpeg_create_compress(&encoder_);
    const size_t bytes = row_bytes(width);
    row_cutter_t cutter(memory_, (2 * 3 + strip_rows + 2 * DCTSIZE) * bytes);
    const auto take = [&] { return cutter.take(bytes); };
    for (auto& row : rgb_) {
        std::generate_n(row, 3, take);
    }
    std::generate_n(y_, strip_rows, take);
    std::generate_n(cb_, DCTSIZE, take);
    std::generate_n(cr_, DCTSIZE, take);
}

level_t::~level_t() {
    jpeg_destroy_compress(&encoder_);
}

void level_t::start(level_t* next, bool encoded, jpeg_saved_marker_ptr segments) {
    next_ = next;
    encoded_ = encoded;
    if (!encoded) {
        return;
    }
    encoder_.image_width = width_;
    encoder_.image_height = height_;
    encoder_.input_components = 3;
    encoder_.in_color_space = JCS_RGB;
    jpeg_set_defaults(&encoder_);
    jpeg_set_quality(&encoder_, quality, TRUE);
    encoder_.raw_data_in = TRUE;
    stream_.open(encoder_);
    jpeg_start_compress(&encoder_, TRUE);
    for (; segments != nullptr; segments = segments->next) {
        jpeg_write_marker(&encoder_, segments->marker, segments->data, segments->data_length);
    }
}

void level_t::take_row() {
    const JDIMENSION index = taken_++;
    const JDIMENSION dropped = height_ % 2;
    if (next_ != nullptr && index > dropped && (index - dropped) % 2 != 0) {
        for (int c = 0; c < 3; ++c) {
            (void)libgr::halve_rows(next_->row_to_fill()[c], rgb_[(index - 1) % 2][c], rgb_[index % 2][c],
                                    next_->width_, 1);
        }
        next_->take_row();
    }
    if (!encoded_) {
        return;
    }
    const size_t filled = libgr::round_up(width_, 2 * DCTSIZE);
    for (unsigned char* const row : rgb_[index % 2]) {
        std::memset(row + width_, row[width_ - 1], filled - width_);
    }
    const bool last = taken_ == height_;
    if (index % 2 == 0 && !last) {
        return;
    }
    const JDIMENSION end = index % strip_rows + 1;
    const JDIMENSION pair = (end - 1) / 2;
    libgr::convert_rgb_rows({y_[2 * pair], y_[2 * pair + 1], cb_[pair], cr_[pair]}, rgb_[0], rgb_[index % 2], filled);
    if (end != strip_rows && !last) {
        return;
    }
    // The last rows once more, as often as the strip lacks rows.
    JSAMPROW y[strip_rows];
    JSAMPROW cb[DCTSIZE];
    JSAMPROW cr[DCTSIZE];
    for (JDIMENSION i = 0; i < strip_rows; ++i) {
        y[i] = y_[std::min(i, end - 1)];
        cb[i / 2] = cb_[std::min(i / 2, pair)];
        cr[i / 2] = cr_[std::min(i / 2, pair)];
    }
    JSAMPARRAY planes[] = {y, cb, cr};
    jpeg_write_raw_data(&encoder_, planes, strip_rows);
}

void level_t::finish() {
    if (encoded_) {
        jpeg_finish_compress(&encoder_);
    }
}

std::deque<level_t> make_levels(bytes_t file, unsigned levels, bool thumbnail) {
    jpeg_error_mgr errors;
    jpeg_decompress_struct decoder{};
    decoder.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&decoder);
    jpeg_mem_src(&decoder, file.data(), file.size());
    jpeg_save_markers(&decoder, JPEG_COM, 0xFFFF);
    for (int n = 0; n < 16; ++n) {
        jpeg_save_markers(&decoder, JPEG_APP0 + n, 0xFFFF);
    }
    jpeg_read_header(&decoder, TRUE);
    if (!fits(decoder)) {
        std::fprintf(stderr, "limit: takes 4:2:0, 4:2:2 and 4:4:4 alone\n");
        std::exit(EXIT_FAILURE);
    }
    const unsigned last = levels + (thumbnail ? 2 : 0);
    std::deque<level_t> made;
    for (unsigned k = 1; k <= last; ++k) {
        made.emplace_back(decoder.image_width >> k, decoder.image_height >> k);
    }
    for (unsigned k = 1; k <= last; ++k) {
        made[k - 1].start(k < last ? &made[k] : nullptr, k <= levels || k == last,
                          k <= levels ? decoder.marker_list : nullptr);
    }
    decoder.raw_data_out = TRUE;
    jpeg_start_decompress(&decoder);
    planes_t(decoder).read(decoder, made.front());
    for (level_t& level : made) {
        level.finish();
    }
    jpeg_finish_decompress(&decoder);
    jpeg_destroy_decompress(&decoder);
    return made;
}

}  // namespace yardstick
