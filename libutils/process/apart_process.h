#pragma once

#include <functional>
#include <optional>
#include <string>

namespace libutils {

// The worker's end of the line to its caller. Where the caller is gone the process ends.
class caller_line_t {
  public:
    virtual ~caller_line_t() = default;

    virtual void tell(const std::string& message) = 0;

    // The next of the caller's words: the one that waits, if any, or the one that comes.
    [[nodiscard]] virtual std::optional<char> next_word() = 0;
    [[nodiscard]] virtual char wait_for_word() = 0;
};

// The caller's ears and mouth.
struct apart_t {
    // Gets each message, in order, behind what was written to std::cout and std::cerr before; a word goes back.
    std::function<std::optional<char>(const std::string& message)> heard;

    // Called some twenty times a second while the caller waits; a word goes to the worker.
    std::function<std::optional<char>()> idle;
};

enum class apart_end_t {
    done,
    died,         // by a signal or a fatal error of a library
    not_started,  // the system has no more processes: nothing was done
};

// Runs `work` in a forked process while this one only waits, so that no disk can hold it up. What the work changes in
// memory is lost. The process dies with its caller.
[[nodiscard]] apart_end_t run_apart(const std::function<void(caller_line_t&)>& work, const apart_t& caller);

}  // namespace libutils
