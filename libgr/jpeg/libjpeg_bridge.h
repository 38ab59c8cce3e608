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

// The name that messages about `data` begin with; "" when it has none.
[[nodiscard]] const char* shown_name(const jpegdata_t& data);

// Error manager: a fatal error is written to standard error and jumps back to attempt().
struct error_manager_t : jpeg_error_mgr {
    std::jmp_buf* jump;      // of the attempt that goes on; not owned
    const jpegdata_t* data;  // that messages name; not owned
    void (*standard_emit_message)(j_common_ptr, int);
    unsigned segments;  // met so far
    bool early_end;     // the compressed data is over before the picture is
    bool silent;
};

// Runs `calls`, the only places where libjpeg works. False when a fatal error of an object whose errors jump to `jump`
// ended them, which has then been reported. The jump back skips destructors: nothing in `calls` may own anything while
// libjpeg is called.
template <typename Calls>
[[nodiscard, gnu::noinline]] bool attempt(std::jmp_buf& jump, const Calls& calls) {
    static_assert(std::is_trivially_destructible_v<Calls>);
    if (setjmp(jump) != 0) {
        return false;
    }
    calls();
    return true;
}

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

    // False too, and reported, when the file became shorter meanwhile.
    template <typename Calls>
    [[nodiscard]] bool attempt(const Calls& calls) {
        return libgr::attempt(jump_, calls) && has_whole_file();
    }

    // The steps up to the first scan, for use inside attempt().
    void create();
    void keep_segments(unsigned app_bytes);  // COM whole, each APPn up to app_bytes
    void read_header();
    // Fatal error when the header asks for far more work than the file's few bytes can be worth. Behind read_header().
    void refuse_oversized();
    // All of these, for a picture that will be decoded.
    void open();

    // Takes the memory for a picture's pixels off what libjpeg may take for its coefficients. False when they ask for
    // too much: for more than a large part of the machine's memory or than what is left of it.
    [[nodiscard]] bool set_aside(uint64_t bytes);
    // From now on nothing is reported.
    void silence() { errors_.silent = true; }
    // Releases all memory now.
    void close() { jpeg_destroy_decompress(&info); }

    // The compressed data is over before the picture is: the file ends, or a marker stands there from which libjpeg
    // does not find back into the data. A damaged restart interval is no early end.
    [[nodiscard]] bool early_end() const { return errors_.early_end; }
    // The file's last byte has been passed without an end-of-image marker.
    [[nodiscard]] bool ran_out() const;
    [[nodiscard]] long warnings() const { return errors_.num_warnings; }

    jpeg_decompress_struct info{};

  private:
    friend class compressor_t;

    [[nodiscard]] bool has_whole_file() const;

    std::jmp_buf jump_{};
    error_manager_t errors_{};
    jpeg_progress_mgr progress_{};
    const jpegdata_t* data_;
    uint64_t memory_left_ = 0;  // of the machine, in bytes
};

// A libjpeg compressor into `out`, which must outlive it. Destroyed with all its memory on every path.
class compressor_t {
  public:
    explicit compressor_t(jpegdata_t& out);
    // Errors of this one jump back to an attempt of `reader`, and messages name what it reads, or are silent as it is.
    compressor_t(jpegdata_t& out, decompressor_t& reader);
    ~compressor_t() { jpeg_destroy_compress(&info); }
    compressor_t(const compressor_t&) = delete;
    compressor_t& operator=(const compressor_t&) = delete;

    template <typename Calls>
    [[nodiscard]] bool attempt(const Calls& calls) {
        return libgr::attempt(*errors_.jump, calls);
    }

    // The first step inside an attempt.
    void create();

    [[nodiscard]] long warnings() const { return errors_.num_warnings; }

    jpeg_compress_struct info{};

  private:
    std::jmp_buf jump_{};
    error_manager_t errors_{};
    jpegdata_t& out_;
};

// Fatal error when a file has more scans than any real one, or than its bytes can be worth; called while scans are
// taken in.
void refuse_endless_scans(j_common_ptr info);

}  // namespace libgr
