#include "tools/progress_line.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <iostream>

#include "libutils/diagnostics.h"

namespace talomake {

using taloram::stage_t;

namespace {

constexpr const char* stage_names[] = {"Copying", "Checking copies", "Making sizes", "Writing pages",
                                       "Writing zoom pages"};
constexpr size_t name_columns = 19;
constexpr size_t usual_columns = 80;  // where the terminal does not tell
constexpr size_t longest_bar = 40;
constexpr size_t shortest_bar = 4;
constexpr std::chrono::milliseconds redraw_interval{70};

size_t terminal_columns() {
    winsize size{};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) {
        return usual_columns;
    }
    return size.ws_col;
}

bool is_shown(progress_mode_t mode) {
    return mode == progress_mode_t::always || (mode == progress_mode_t::automatic && isatty(STDERR_FILENO) != 0);
}

// Exchanging a stream's buffer clears the stream's state, and with it the memory of a failed write.
std::streambuf* exchange_buffer(std::ostream& stream, std::streambuf* buffer) {
    const std::ios::iostate state = stream.rdstate();
    std::streambuf* const old = stream.rdbuf(buffer);
    stream.setstate(state);
    return old;
}

}  // namespace

progress_line_t::guard_t::guard_t(std::ostream& stream, progress_line_t& line)
    : stream_(stream), line_(line), target_(exchange_buffer(stream, this)) {
}

progress_line_t::guard_t::~guard_t() {
    exchange_buffer(stream_, target_);
}

progress_line_t::guard_t::int_type progress_line_t::guard_t::overflow(int_type c) {
    if (traits_type::eq_int_type(c, traits_type::eof())) {
        return traits_type::not_eof(c);
    }
    const char text = traits_type::to_char_type(c);
    return xsputn(&text, 1) == 1 ? c : traits_type::eof();
}

std::streamsize progress_line_t::guard_t::xsputn(const char* text, std::streamsize size) {
    if (size <= 0) {
        return 0;
    }
    line_.erase();
    const std::streamsize written = target_->sputn(text, size);
    at_line_start_ = text[size - 1] == '\n';
    line_.draw();
    return written;
}

int progress_line_t::guard_t::sync() {
    return target_->pubsync();
}

progress_line_t::progress_line_t(progress_mode_t mode) : start_(clock_t::now()) {
    if (is_shown(mode)) {
        standard_error_.emplace(std::cerr, *this);
        standard_output_.emplace(std::cout, *this);
    }
}

progress_line_t::~progress_line_t() {
    end(clock_t::now());
}

void progress_line_t::step(stage_t stage, double fraction) {
    if (!standard_error_ || !(fraction > 0)) {
        return;
    }
    const clock_t::time_point now = clock_t::now();
    if (!running_ || stage != stage_) {
        end(now);
        begin(stage, fraction, now);
    }
    count_ = static_cast<size_t>(std::lround(fraction * static_cast<double>(total_)));
    const bool is_last = count_ >= total_;
    if (is_last || columns_drawn_ == 0 || now - drawn_ >= redraw_interval) {
        draw();
    }
    if (is_last) {
        end(now);
    }
}

void progress_line_t::begin(stage_t stage, double fraction, clock_t::time_point now) {
    running_ = true;
    stage_ = stage;
    total_ = static_cast<size_t>(std::lround(1 / std::clamp(fraction, 1e-9, 1.0)));
    drawn_ = now;
}

void progress_line_t::end(clock_t::time_point now) {
    if (columns_drawn_ > 0) {
        put("\n");
        columns_drawn_ = 0;
    }
    if (running_) {
        running_ = false;
        start_ = now;
    }
}

void progress_line_t::draw() {
    if (!running_ || !standard_error_->at_line_start() || !standard_output_->at_line_start()) {
        return;
    }
    const std::string line = text();
    const size_t rest = columns_drawn_ > line.size() ? columns_drawn_ - line.size() : 0;
    put('\r' + line + std::string(rest, ' '));
    columns_drawn_ = line.size();
    drawn_ = clock_t::now();
}

void progress_line_t::erase() {
    if (columns_drawn_ > 0) {
        put('\r' + std::string(columns_drawn_, ' ') + '\r');
        columns_drawn_ = 0;
    }
}

void progress_line_t::put(const std::string& text) {
    standard_error_->target().sputn(text.data(), static_cast<std::streamsize>(text.size()));
    standard_error_->target().pubsync();
}

std::string progress_line_t::text() const {
    const std::chrono::duration<double> seconds = clock_t::now() - start_;
    const double rate = std::min(static_cast<double>(count_) / std::max(seconds.count(), 1e-3), 9999.9);
    std::string line = stage_names[static_cast<size_t>(stage_)];
    line.resize(std::max(line.size(), name_columns), ' ');
    const std::string numbers = libutils::join_text(std::setw(5), count_, "/", total_, std::fixed, std::setprecision(1),
                                                    std::setw(8), rate, " files/s");
    const size_t columns = terminal_columns() - 1;  // the cursor needs one
    const size_t others = line.size() + numbers.size() + 2;
    if (columns >= others + shortest_bar) {
        const size_t bar = std::min(columns - others, longest_bar);
        const size_t filled = bar * std::min(count_, total_) / total_;
        line += '[' + std::string(filled, '#') + std::string(bar - filled, '-') + ']';
    }
    line += numbers;
    line.resize(std::min(line.size(), columns));
    return line;
}

}  // namespace talomake
