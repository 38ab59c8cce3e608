#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <ostream>
#include <streambuf>
#include <string>

#include "album/progress.h"
#include "tools/command_line.h"

namespace talomake {

// Shows on standard error how far a run is: one line a stage, drawn over itself and left standing when the stage is
// done. While it lives it stands between std::cerr, std::cout and the terminal, so that no text is ever mixed into the
// line: the line is taken away before the text and drawn again after it.
class progress_line_t {
  public:
    explicit progress_line_t(progress_mode_t mode);
    ~progress_line_t();
    progress_line_t(const progress_line_t&) = delete;
    progress_line_t& operator=(const progress_line_t&) = delete;

    // One more file of `stage` is done. `fraction` is in (0, 1]; the first one of a stage is 1 / number of files.
    void step(taloram::stage_t stage, double fraction);

  private:
    using clock_t = std::chrono::steady_clock;

    class guard_t : public std::streambuf {
      public:
        guard_t(std::ostream& stream, progress_line_t& line);
        ~guard_t() override;

        [[nodiscard]] std::streambuf& target() { return *target_; }
        [[nodiscard]] bool at_line_start() const { return at_line_start_; }

      protected:
        int_type overflow(int_type c) override;
        std::streamsize xsputn(const char* text, std::streamsize size) override;
        int sync() override;

      private:
        std::ostream& stream_;
        progress_line_t& line_;
        std::streambuf* target_;
        bool at_line_start_ = true;
    };

    void begin(taloram::stage_t stage, double fraction, clock_t::time_point now);
    void end(clock_t::time_point now);
    void draw();
    void erase();
    void put(const std::string& text);
    [[nodiscard]] std::string text() const;

    std::optional<guard_t> standard_error_;  // empty when nothing is shown
    std::optional<guard_t> standard_output_;
    bool running_ = false;  // a stage was begun and not ended
    taloram::stage_t stage_ = taloram::stage_t::copy;
    size_t count_ = 0;
    size_t total_ = 1;
    clock_t::time_point start_;  // of the stage
    clock_t::time_point drawn_;  // when
    size_t columns_drawn_ = 0;   // of the line on the screen, 0 when there is none
};

}  // namespace talomake
