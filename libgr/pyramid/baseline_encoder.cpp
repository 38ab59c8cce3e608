#include "libgr/pyramid/baseline_encoder.h"

#include <algorithm>

#include "libgr/image/round_up.h"
#include "libgr/jpeg/encoding.h"
#include "libgr/jpeg/saved_segments.h"

namespace libgr {

namespace {

constexpr size_t growth_step = 0x100000;  // bytes
constexpr unsigned char marker_start = 0xFF;
constexpr unsigned char frame_marker = 0xC0;
constexpr unsigned char end_marker = 0xD9;
constexpr unsigned char scan_marker = 0xDA;

// Encodes a picture of one MCU.
bool make_small_picture(compressor_t& writer, int quality, unsigned components) {
    std::array<JSAMPLE, 2 * DCTSIZE * 3> row{};
    JSAMPROW rows[] = {row.data()};
    return writer.attempt([&] {
        writer.create();
        jpeg_compress_struct& info = writer.info;
        set_up_encoder(info, {2 * DCTSIZE, 2 * DCTSIZE, components == 1 ? JCS_GRAYSCALE : JCS_RGB,
                              static_cast<int>(components), quality, true});
        jpeg_start_compress(&info, TRUE);
        while (info.next_scanline < info.image_height) {
            jpeg_write_scanlines(&info, rows, 1);
        }
        jpeg_finish_compress(&info);
    });
}

void append_word(std::vector<unsigned char>& bytes, size_t value) {
    bytes.push_back(static_cast<unsigned char>(value >> 8));
    bytes.push_back(static_cast<unsigned char>(value));
}

// Where the segment behind that one starts (ITU-T T.81 B.1.1.4).
size_t next_segment(const jpegdata_t& file, size_t at) {
    return at + 2 + (size_t{file[at + 2]} << 8 | file[at + 3]);
}

}  // namespace

const encoder_tables_t* encoder_tables_t::make(int quality, unsigned components) {
    static encoder_tables_t color;
    static encoder_tables_t gray;
    encoder_tables_t& tables = components == 1 ? gray : color;
    const bool made = tables.components_ == components && tables.quality_ == quality;
    return made || tables.read(quality, components) ? &tables : nullptr;
}

bool encoder_tables_t::read(int quality, unsigned components) {
    jpegdata_t file;
    compressor_t writer(file);
    components_ = 0;
    if (!make_small_picture(writer, quality, components)) {
        return false;
    }
    for (size_t i = 0; i < (components == 1 ? 1 : 2); ++i) {
        const jpeg_compress_struct& info = writer.info;
        std::array<uint16_t, block_size> table{};
        std::copy_n(info.quant_tbl_ptrs[i]->quantval, block_size, table.begin());
        quantisers_[i] = quantiser_t(table.data());
        codes_[i] = code_table_t(*info.dc_huff_tbl_ptrs[i], *info.ac_huff_tbl_ptrs[i]);
    }
    codes_by_component_ = {&codes_[0], &codes_[1], &codes_[1]};
    const size_t start_end = next_segment(file, 2);  // JFIF's own, behind the start of image
    size_t at = start_end;
    while (file[at + 1] != scan_marker) {
        frame_size_at_ = file[at + 1] == frame_marker ? at - start_end + 5 : frame_size_at_;
        at = next_segment(file, at);
    }
    start_.assign(file.begin(), file.begin() + start_end);
    header_.assign(file.begin() + start_end, file.begin() + next_segment(file, at));
    quality_ = quality;
    components_ = components;
    return true;
}

std::vector<unsigned char> encoder_tables_t::header(JDIMENSION width, JDIMENSION height) const {
    std::vector<unsigned char> bytes = header_;
    std::vector<unsigned char> size;
    append_word(size, height);
    append_word(size, width);
    std::copy(size.begin(), size.end(), bytes.begin() + static_cast<ptrdiff_t>(frame_size_at_));
    return bytes;
}

encoder_batch_t::encoder_batch_t(unsigned components) {
    auto next = order.begin();
    const auto add = [&next](auto& groups, size_t block, unsigned component) {
        *next++ = {&groups[block / group_blocks], static_cast<unsigned>(block % group_blocks), component};
    };
    if (components == 1) {
        for (size_t i = 0; i < 2 * mcus; ++i) {
            add(luma[0], i, 0);
        }
        return;
    }
    for (size_t mcu = 0; mcu < mcus; ++mcu) {
        for (auto& groups : luma) {
            add(groups, 2 * mcu, 0);
            add(groups, 2 * mcu + 1, 0);
        }
        add(chroma[0], mcu, 1);
        add(chroma[1], mcu, 2);
    }
}

void baseline_encoder_t::start(JDIMENSION width, JDIMENSION height, const jpeg_marker_struct* segments) {
    blocks_wide_ = (width + DCTSIZE - 1) / DCTSIZE;
    block_rows_left_ = (height + DCTSIZE - 1) / DCTSIZE;
    out_.offset = 0;
    out_.limit = jpegdata_t::no_limit;
    append(tables_.start());
    for (; segments != nullptr; segments = segments->next) {
        if (is_carried_over(*segments)) {
            std::vector<unsigned char> segment = {marker_start, segments->marker};
            append_word(segment, segments->data_length + 2);
            segment.insert(segment.end(), segments->data, segments->data + segments->data_length);
            append(segment);
        }
    }
    append(tables_.header(width, height));
}

bool baseline_encoder_t::make_room(size_t count) {
    failed_ = failed_ || (out_.size() - size_ < count && !out_.resize(round_up(size_ + count, growth_step)));
    return !failed_;
}

void baseline_encoder_t::append(const std::vector<unsigned char>& bytes) {
    if (make_room(bytes.size())) {
        std::copy(bytes.begin(), bytes.end(), out_.begin() + size_);
        size_ += bytes.size();
    }
}

void baseline_encoder_t::take_strip(JSAMPARRAY const* planes) {
    const bool color = tables_.components() == 3;
    const size_t mcus = color ? (blocks_wide_ + 1) / 2 : blocks_wide_;
    const size_t batch = color ? encoder_batch_t::mcus : 2 * encoder_batch_t::mcus;
    for (size_t first = 0; first < mcus && !failed_; first += batch) {
        const size_t count = std::min(batch, mcus - first);
        if (color) {
            transform(planes, first, count);
            fill_up(first, count);
            code(count * encoder_batch_t::mcu_blocks);
        } else {
            forward_dct(batch_.luma[0].data(), round_up(count, group_blocks) / group_blocks, planes[0],
                        first * block_side, tables_.quantiser(false));
            code(count);
        }
    }
    block_rows_left_ -= std::min<JDIMENSION>(block_rows_left_, color ? 2 : 1);
}

void baseline_encoder_t::transform(JSAMPARRAY const* planes, size_t first_mcu, size_t mcus) {
    const auto groups = [](size_t blocks) { return round_up(blocks, group_blocks) / group_blocks; };
    for (size_t half = 0; half < std::min<size_t>(2, block_rows_left_); ++half) {
        forward_dct(batch_.luma[half].data(), groups(2 * mcus), planes[0] + half * block_side,
                    first_mcu * 2 * block_side, tables_.quantiser(false));
    }
    for (size_t i = 0; i < 2; ++i) {
        forward_dct(batch_.chroma[i].data(), groups(mcus), planes[1 + i], first_mcu * block_side,
                    tables_.quantiser(true));
    }
}

// The last MCU of a row may reach over the picture's last column of blocks, those of the last row over its last row.
void baseline_encoder_t::fill_up(size_t first_mcu, size_t mcus) {
    const auto& order = batch_.order;
    const size_t last = (mcus - 1) * encoder_batch_t::mcu_blocks;
    if (2 * (first_mcu + mcus) > blocks_wide_) {
        order[last + 1].fill_up_like(order[last]);
        order[last + 3].fill_up_like(order[last + 2]);
    }
    for (size_t mcu = 0; block_rows_left_ == 1 && mcu <= last; mcu += encoder_batch_t::mcu_blocks) {
        order[mcu + 2].fill_up_like(order[mcu + 1]);
        order[mcu + 3].fill_up_like(order[mcu + 1]);
    }
}

void baseline_encoder_t::code(size_t blocks) {
    unsigned char* const bytes = batch_.bytes.data();
    const unsigned char* const end = encode_blocks(bytes, rest_, batch_.order.data(), blocks, tables_.codes());
    if (make_room(2 * static_cast<size_t>(end - bytes) + coding_slack)) {
        unsigned char* const to = out_.begin();
        size_ = static_cast<size_t>(stuff_bytes(to + size_, bytes, end) - to);
    }
}

bool baseline_encoder_t::finish() {
    if (rest_.count != 0) {  // the last byte is filled with ones (ITU-T T.81 F.1.2.3)
        const unsigned missing = 8 - rest_.count;
        const auto last = static_cast<unsigned char>(rest_.bits << missing | ((1U << missing) - 1));
        append(last == marker_start ? std::vector<unsigned char>{last, 0} : std::vector{last});
    }
    append({marker_start, end_marker});
    out_.limit = size_;
    return !failed_;
}

}  // namespace libgr
