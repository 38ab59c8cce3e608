#pragma once

#include <algorithm>
#include <iostream>
#include <locale>
#include <sstream>
#include <string>
#include <string_view>

namespace libutils {

// Does nothing: a breakpoint here stops before any diagnostic of the program is written.
inline void error() {
}

// The parts as one text, numbers in the classic form whatever the process's C++ locale is.
template <typename... Parts>
[[nodiscard]] std::string join_text(const Parts&... parts) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    (text << ... << parts);
    return text.str();
}

// Ends a line that only says where the reason in the next line was met.
inline constexpr std::string_view announces_reason = ": error detected.";

// Remembers, while it lives, the first diagnostic line since its making or the last clear(): failures are traced from
// the innermost step to the outermost, so that it tells the cause of one. A line that announces another takes that in.
class first_report_t {
  public:
    first_report_t() : outer_(innermost_) { innermost_ = this; }
    ~first_report_t() { innermost_ = outer_; }
    first_report_t(const first_report_t&) = delete;
    first_report_t& operator=(const first_report_t&) = delete;

    // "" when nothing was reported.
    [[nodiscard]] const std::string& line() const { return line_; }
    void clear() { line_.clear(); }

    // Lines that go to standard error.
    static void hear(std::string_view lines) {
        for (first_report_t* listener = innermost_; listener != nullptr; listener = listener->outer_) {
            for (std::string_view rest = lines; listener->takes_more() && !rest.empty();) {
                const std::string_view line = rest.substr(0, rest.find('\n'));
                listener->take(line);
                rest.remove_prefix(std::min(line.size() + 1, rest.size()));
            }
        }
    }

  private:
    [[nodiscard]] bool takes_more() const { return line_.empty() || line_.ends_with(announces_reason); }
    void take(std::string_view line) {
        if (!line_.empty()) {
            line_.erase(line_.size() - announces_reason.size()).append(": ");
        }
        line_ += line;
    }

    inline static first_report_t* innermost_ = nullptr;

    first_report_t* outer_;
    std::string line_;
};

// Writes one diagnostic line to standard error after calling error(). The whole line reaches the stream in one
// piece, so that a progress display behind the stream never splits it.
template <typename... Parts>
void report(const Parts&... parts) {
    error();
    const std::string line = join_text(parts...) + '\n';
    first_report_t::hear(line);
    std::cerr << line << std::flush;
}

}  // namespace libutils
