#pragma once

#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <type_traits>
// libjpeg's header needs <cstdio> before it.
#include <jpeglib.h>
// The message codes depend on what jpeglib.h defines.
#include <jerror.h>

#include "libgr/jpeg/jpegdata.h"

namespace libgr {

// The whole of a saved segment: what the two length bytes leave (ITU-T T.81 B.1.1.4).
constexpr unsigned max_segment_bytes = 65533;

// libjpeg's own limit in both directions.
constexpr uint32_t max_picture_side = 65500;

// The most memory that a picture's pixels, and its coefficients, may take: a quarter of the machine's, at least 1 GiB;
// in bytes. A damaged header of a few bytes can ask for tens of gigabytes.
[[nodiscard]] uint64_t memory_limit();

// The name that messages about `data` begin with; "" when it has none.
[[nodiscard]] const char* shown_name(const jpegdata_t& data);

// Error manager for reading: a fatal error is written to standard error and jumps back to attempt().
struct error_manager_t : jpeg_error_mgr {
    std::jmp_buf jump;
    const jpegdata_t* data;  // being read; not owned
    void (*standard_emit_message)(j_common_ptr, int);
    unsigned segments;  // met so far
    bool early_end;     // libjpeg warned that the compressed data stopped short
    bool silent;
};

// Source manager over a whole file in memory.
struct source_manager_t : jpeg_source_mgr {
    const jpegdata_t* data;  // not owned
    unsigned presentations;  // times that the view was handed to libjpeg
    bool in_header;
};

// Destination manager that appends to `data` and cuts it to the stream's length at the end.
struct destination_manager_t : jpeg_destination_mgr {
    jpegdata_t* data;  // not owned
};

// A libjpeg decompressor over `data`, which must outlive it. Destroyed with all its memory on every path.
class decompressor_t {
  public:
    explicit decompressor_t(const jpegdata_t& data);
    ~decompressor_t() { jpeg_destroy_decompress(&info); }
    decompressor_t(const decompressor_t&) = delete;
    decompressor_t& operator=(const decompressor_t&) = delete;

    // Runs `calls`, the only place where libjpeg reads. False when a fatal error ended them or the file became shorter
    // meanwhile, which has then been reported. The jump back skips destructors: nothing in `calls` may own anything
    // while libjpeg is called.
    template <typename Calls>
    [[nodiscard, gnu::noinline]] bool attempt(const Calls& calls) {
        static_assert(std::is_trivially_destructible_v<Calls>);
        if (setjmp(errors_.jump) != 0) {
            return false;
        }
        calls();
        return has_whole_file();
    }

    // The steps up to the first scan, for use inside attempt().
    void create();
    void keep_segments(unsigned app_bytes);  // COM whole, each APPn up to app_bytes
    void read_header();

    void silence() { errors_.silent = true; }
    // Releases all memory now.
    void close() { jpeg_destroy_decompress(&info); }

    // libjpeg warned that the compressed data ended or hit a marker too early.
    [[nodiscard]] bool early_end() const { return errors_.early_end; }
    // The file's last byte has been passed without an end-of-image marker.
    [[nodiscard]] bool ran_out() const;
    [[nodiscard]] long warnings() const { return errors_.num_warnings; }

    jpeg_decompress_struct info{};

  private:
    [[nodiscard]] bool has_whole_file() const;

    error_manager_t errors_{};
    jpeg_progress_mgr progress_{};
    const jpegdata_t* data_;
};

// A libjpeg compressor into `out`, which must outlive it. libjpeg's fatal errors end the process here: callers check
// beforehand whatever could lead to one.
class compressor_t {
  public:
    explicit compressor_t(jpegdata_t& out);
    ~compressor_t() { jpeg_destroy_compress(&info); }
    compressor_t(const compressor_t&) = delete;
    compressor_t& operator=(const compressor_t&) = delete;

    [[nodiscard]] long warnings() const { return errors_.num_warnings; }

    jpeg_compress_struct info{};

  private:
    jpeg_error_mgr errors_{};
};

// Fatal error when a file has more scans than any real one; called while scans are taken in.
void refuse_endless_scans(j_common_ptr info);

}  // namespace libgr
