#pragma once

#include <deque>

#include "bench/yardstick/turn.h"

namespace yardstick {

// One reduced size: it takes rows, hands them to its encoder and, two by two and halved, to the next.
class level_t {
  public:
    level_t(JDIMENSION width, JDIMENSION height);
    ~level_t();
    level_t(const level_t&) = delete;
    level_t& operator=(const level_t&) = delete;

    // Each row of the picture, in planes of red, green and blue, goes into row_to_fill() from the top.
    void start(level_t* next, bool encoded, jpeg_saved_marker_ptr segments);
    [[nodiscard]] unsigned char* const* row_to_fill() const { return rgb_[taken_ % 2]; }
    void take_row();
    void finish();

    [[nodiscard]] JDIMENSION width() const { return width_; }
    [[nodiscard]] JDIMENSION height() const { return height_; }
    [[nodiscard]] bytes_t bytes() const { return stream_.bytes(); }

  private:
    static constexpr JDIMENSION strip_rows = 2 * DCTSIZE;

    JDIMENSION width_;
    JDIMENSION height_;
    JDIMENSION taken_ = 0;
    level_t* next_ = nullptr;
    bool encoded_ = false;
    stream_t stream_;
    jpeg_error_mgr errors_{};
    jpeg_compress_struct encoder_{};
    std::unique_ptr<unsigned char[]> memory_;  // of all rows below
    unsigned char* rgb_[2][3];
    JSAMPROW y_[strip_rows];
    JSAMPROW cb_[DCTSIZE];
    JSAMPROW cr_[DCTSIZE];
};

// Makes `levels` reduced sizes of a photograph in 4:2:0, 4:2:2 or 4:4:4, each half the one before, all encoded with the
// photograph's segments; and, two halvings further on, a thumbnail without them where asked for, which is the last of
// the result then. Any other photograph ends the program.
[[nodiscard]] std::deque<level_t> make_levels(bytes_t file, unsigned levels, bool thumbnail);

}  // namespace yardstick
