#include "libgr/jpeg/libjpeg_bridge.h"

#include <unistd.h>

#include <algorithm>
#include <new>
#include <numeric>

#include "libutils/diagnostics.h"
#include "libutils/process/memory.h"

namespace libgr {

namespace {

// A file of a few kilobytes can make libjpeg walk a huge picture, once per scan. What a file may ask for grows with its
// bytes, so that nothing takes long that is small:
//
//     limit = start + bytes * growth
//
// A whole Huffman-coded picture takes a bit per block at least, and a block shows no more than 64 pixels: `growth` lets
// all of them pass. `start` is for those cut short: the largest cameras' 200 megapixels are some 4.7 million blocks.
struct work_limit_t {
    uint64_t start;
    uint64_t growth;

    [[nodiscard]] uint64_t of(uint64_t bytes) const { return start + bytes * growth; }
};
constexpr work_limit_t max_pixels{uint64_t{1} << 27, 1024};
constexpr work_limit_t max_blocks{5'000'000, 8};
constexpr work_limit_t max_scanned_blocks{uint64_t{1} << 24, 512};  // in all scans; real files have some ten of them
constexpr uint64_t max_scans = 500;
// libjpeg's list of saved segments takes time by the square of their number; real files have some hundred.
constexpr int max_segments = 16384;
// Once for the file, once more when the data has run out. Whoever asks again goes round in circles.
constexpr unsigned max_presentations = 2;
constexpr size_t growth_step = 0x100000;  // bytes

constexpr int first_real_marker = 0xC0;  // ITU-T T.81 table B.1; lower codes are reserved

// Messages of our own, numbered after libjpeg's.
enum own_message_t { msg_scans = 1000, msg_segments, msg_size, msg_end };
constexpr const char* own_messages[] = {"JPEG file with more than %d scans", "JPEG file with more than %d segments",
                                        "JPEG picture of %d x %d pixels in too small a file"};

template <typename Info>
j_common_ptr common(Info* info) {
    return reinterpret_cast<j_common_ptr>(info);
}

error_manager_t& errors_of(j_common_ptr info) {
    return *static_cast<error_manager_t*>(info->err);
}

source_manager_t& source_of(j_decompress_ptr info) {
    return *static_cast<source_manager_t*>(info->src);
}

destination_manager_t& destination_of(j_compress_ptr info) {
    return *static_cast<destination_manager_t*>(info->dest);
}

// libjpeg's text as one line through the stream of all other diagnostics.
void output_message(j_common_ptr info) {
    if (errors_of(info).silent) {
        return;
    }
    char text[JMSG_LENGTH_MAX];
    info->err->format_message(info, text);
    libutils::report(text);
}

[[noreturn]] void my_error_exit(j_common_ptr info) {
    error_manager_t& errors = errors_of(info);
    if (!errors.silent) {
        libutils::report(shown_name(*errors.data), libutils::announces_reason);
    }
    errors.output_message(info);
    std::longjmp(*errors.jump, 1);
}

// Whether the marker that libjpeg has met ends the compressed data. In a picture with restart intervals it goes on
// after restart markers and after codes that are no marker's: it finds the next interval.
bool is_end_of_data(const jpeg_decompress_struct& info) {
    const bool passed_over = info.unread_marker < first_real_marker ||
                             (info.unread_marker >= JPEG_RST0 && info.unread_marker < JPEG_RST0 + 8);
    return info.restart_interval == 0 || !passed_over;
}

void emit_message(j_common_ptr info, int level) {
    error_manager_t& errors = errors_of(info);
    if (level < 0 && errors.msg_code == JWRN_HIT_MARKER) {
        errors.early_end = errors.early_end || is_end_of_data(*reinterpret_cast<j_decompress_ptr>(info));
    }
    // Every segment of the header shows as a trace message of this level.
    if (level == 1 && ++errors.segments > max_segments) {
        ERREXIT1(info, msg_segments, max_segments);
    }
    errors.standard_emit_message(info, level);
}

void src_init(j_decompress_ptr info) {
    info->src->next_input_byte = nullptr;
    info->src->bytes_in_buffer = 0;
}

boolean src_fill_input_buff(j_decompress_ptr info) {
    source_manager_t& source = source_of(info);
    if (source.data->empty()) {
        ERREXIT(info, JERR_INPUT_EMPTY);
    }
    if (++source.presentations > (source.in_header ? 1 : max_presentations)) {
        ERREXIT(info, JERR_INPUT_EOF);
    }
    source.next_input_byte = source.data->begin();
    source.bytes_in_buffer = source.data->size();
    return TRUE;
}

void src_skip_input_data(j_decompress_ptr info, long count) {
    source_manager_t& source = source_of(info);
    if (count > 0) {
        const size_t skipped = std::min(static_cast<size_t>(count), source.bytes_in_buffer);
        source.next_input_byte += skipped;
        source.bytes_in_buffer -= skipped;
    }
}

// While blocks of one interval are missing libjpeg does not warn again. When it then finds no further interval the data
// is over all the same.
boolean src_resync_to_restart(j_decompress_ptr info, int wanted) {
    const boolean synced = jpeg_resync_to_restart(info, wanted);
    error_manager_t& errors = errors_of(reinterpret_cast<j_common_ptr>(info));
    errors.early_end = errors.early_end || (info->unread_marker != 0 && is_end_of_data(*info));
    return synced;
}

void src_term(j_decompress_ptr /*info*/) {
}

void install_source(j_decompress_ptr info, const jpegdata_t& data) {
    if (info->src == nullptr) {
        void* const memory = info->mem->alloc_small(common(info), JPOOL_PERMANENT, sizeof(source_manager_t));
        info->src = new (memory) source_manager_t{};
    }
    source_manager_t& source = source_of(info);
    source.init_source = src_init;
    source.fill_input_buffer = src_fill_input_buff;
    source.skip_input_data = src_skip_input_data;
    source.resync_to_restart = src_resync_to_restart;
    source.term_source = src_term;
    source.data = &data;
    source.presentations = 0;
    source.in_header = true;
    src_init(info);
}

// Offers the `room` bytes after the first `used` ones to libjpeg.
void offer(j_compress_ptr info, size_t used, size_t room) {
    destination_manager_t& destination = destination_of(info);
    if (!destination.data->resize(used + room)) {
        ERREXIT1(info, JERR_OUT_OF_MEMORY, 0);
    }
    destination.next_output_byte = destination.data->begin() + used;
    destination.free_in_buffer = room;
}

void dest_init(j_compress_ptr info) {
    offer(info, 0, growth_step);
}

boolean dest_empty_buff(j_compress_ptr info) {
    offer(info, destination_of(info).data->size(), growth_step);
    return TRUE;
}

void dest_term(j_compress_ptr info) {
    destination_manager_t& destination = destination_of(info);
    if (!destination.data->resize(destination.data->size() - destination.free_in_buffer)) {
        ERREXIT1(info, JERR_OUT_OF_MEMORY, 0);
    }
    destination.next_output_byte = nullptr;
    destination.free_in_buffer = 0;
    info->dest = nullptr;
}

uint64_t blocks_of(const jpeg_decompress_struct& info) {
    return std::accumulate(info.comp_info, info.comp_info + info.num_components, uint64_t{0},
                           [](uint64_t sum, const jpeg_component_info& component) {
                               return sum + uint64_t{component.width_in_blocks} * component.height_in_blocks;
                           });
}

// What both kinds of libjpeg objects do about errors.
void install_errors(error_manager_t& errors, std::jmp_buf& jump, const jpegdata_t& data) {
    jpeg_std_error(&errors);
    errors.jump = &jump;
    errors.data = &data;
    errors.error_exit = my_error_exit;
    errors.output_message = output_message;
    errors.addon_message_table = own_messages;
    errors.first_addon_message = msg_scans;
    errors.last_addon_message = msg_end - 1;
}

// The most memory that a picture's pixels, and its coefficients, may take: a quarter of the machine's, at least 1 GiB;
// in bytes. A damaged header of a few bytes can ask for tens of gigabytes.
uint64_t memory_share() {
    constexpr uint64_t always = uint64_t{1} << 30;
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long page_bytes = sysconf(_SC_PAGE_SIZE);
    if (pages <= 0 || page_bytes <= 0) {
        return always;
    }
    return std::max(always, static_cast<uint64_t>(pages) * static_cast<uint64_t>(page_bytes) / 4);
}

void install_destination(j_compress_ptr info, jpegdata_t& out) {
    if (info->dest == nullptr) {
        void* const memory = info->mem->alloc_small(common(info), JPOOL_PERMANENT, sizeof(destination_manager_t));
        info->dest = new (memory) destination_manager_t{};
    }
    destination_manager_t& destination = destination_of(info);
    destination.init_destination = dest_init;
    destination.empty_output_buffer = dest_empty_buff;
    destination.term_destination = dest_term;
    destination.data = &out;
}

}  // namespace

const char* shown_name(const jpegdata_t& data) {
    return data.name == nullptr ? "" : data.name;
}

void refuse_endless_scans(j_common_ptr info) {
    auto& reader = *reinterpret_cast<j_decompress_ptr>(info);
    const uint64_t walked = max_scanned_blocks.of(errors_of(info).data->size());
    const uint64_t scans = std::min(max_scans, walked / std::max(blocks_of(reader), uint64_t{1}));
    if (static_cast<uint64_t>(reader.input_scan_number) > scans) {
        ERREXIT1(info, msg_scans, static_cast<int>(scans));
    }
}

decompressor_t::decompressor_t(const jpegdata_t& data) : data_(&data) {
    install_errors(errors_, jump_, data);
    errors_.standard_emit_message = errors_.emit_message;
    errors_.emit_message = emit_message;
    info.err = &errors_;
    progress_.progress_monitor = refuse_endless_scans;
}

void decompressor_t::create() {
    jpeg_create_decompress(&info);
    memory_left_ = libutils::available_memory();
    if (!set_aside(0)) {
        ERREXIT1(&info, JERR_OUT_OF_MEMORY, 0);
    }
    info.progress = &progress_;
    install_source(&info, *data_);
}

bool decompressor_t::set_aside(uint64_t bytes) {
    const uint64_t share = memory_share();
    if (bytes > share || bytes >= memory_left_) {
        return false;
    }
    memory_left_ -= bytes;
    info.mem->max_memory_to_use = static_cast<long>(std::min(share, memory_left_));  // 0 would mean no limit
    return true;
}

void decompressor_t::keep_segments(unsigned app_bytes) {
    jpeg_save_markers(&info, JPEG_COM, 0xFFFF);
    for (int n = 0; n < 16; ++n) {
        jpeg_save_markers(&info, JPEG_APP0 + n, app_bytes);
    }
}

void decompressor_t::read_header() {
    (void)jpeg_read_header(&info, TRUE);
    source_of(&info).in_header = false;
    // Newer libraries read other depths through other calls.
    if (info.data_precision != BITS_IN_JSAMPLE) {
        ERREXIT1(&info, JERR_BAD_PRECISION, info.data_precision);
    }
}

bool decompressor_t::has_whole_file() const {
    const bool whole = data_->is_intact();
    if (!whole && !errors_.silent) {
        libutils::report(shown_name(*data_), libutils::announces_reason);
        libutils::report("File became shorter while it was read");
    }
    return whole;
}

void decompressor_t::refuse_oversized() {
    const uint64_t pixels = uint64_t{info.image_width} * info.image_height;
    if (pixels > max_pixels.of(data_->size()) || blocks_of(info) > max_blocks.of(data_->size())) {
        ERREXIT2(&info, msg_size, static_cast<int>(info.image_width), static_cast<int>(info.image_height));
    }
}

void decompressor_t::open() {
    create();
    keep_segments(0xFFFF);
    read_header();
    refuse_oversized();
}

bool decompressor_t::ran_out() const {
    return info.src != nullptr && static_cast<const source_manager_t*>(info.src)->presentations > 1;
}

compressor_t::compressor_t(jpegdata_t& out) : out_(out) {
    install_errors(errors_, jump_, out);
    info.err = &errors_;
}

compressor_t::compressor_t(jpegdata_t& out, decompressor_t& reader) : out_(out) {
    install_errors(errors_, reader.jump_, *reader.data_);
    errors_.silent = reader.errors_.silent;
    info.err = &errors_;
}

void compressor_t::create() {
    jpeg_create_compress(&info);
    install_destination(&info, out_);
}

}  // namespace libgr
