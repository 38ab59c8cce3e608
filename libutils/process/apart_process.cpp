#include "libutils/process/apart_process.h"

#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <iostream>
#include <utility>

#include "libutils/process/process_messages.h"

namespace libutils {

namespace {

constexpr int idle_interval = 50;  // milliseconds

// A worker's end. What is flushed reaches the caller at once.
class line_t : public caller_line_t {
  public:
    explicit line_t(int socket) : socket_(socket) {
        std::cout.rdbuf(&output_);
        std::cerr.rdbuf(&error_);
    }

    void tell(const std::string& message) override {
        answer_.record.emplace_back(stream_t::message, message);
        send();
    }
    std::optional<char> next_word() override {
        pollfd ready{socket_, POLLIN, 0};
        return poll(&ready, 1, 0) > 0 ? std::optional(wait_for_word()) : std::nullopt;
    }
    char wait_for_word() override {
        char word = 0;
        if (!receive_all(socket_, &word, sizeof word)) {
            _exit(1);
        }
        return word;
    }
    void end() {
        answer_.succeeded = true;
        send();
    }

  private:
    void send() {
        if (!send_answer(socket_, answer_)) {
            _exit(1);
        }
        answer_.record.clear();
    }

    int socket_;
    answer_t answer_;
    recorder_t output_{answer_.record, stream_t::output, [this] { send(); }};
    recorder_t error_{answer_.record, stream_t::error, [this] { send(); }};
};

// Never returns: what the caller had in hand at the fork must not be done a second time.
[[noreturn]] void work_apart(int socket, pid_t caller, const std::function<void(caller_line_t&)>& work) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != caller) {
        _exit(1);
    }
    try {
        line_t line(socket);
        work(line);
        line.end();
    } catch (...) {
        _exit(1);
    }
    _exit(0);
}

void send_word(int socket, std::optional<char> word) {
    // A worker that is gone is noticed where its messages are read.
    [[maybe_unused]] const bool sent = word && send_all(socket, &*word, sizeof *word);
}

// Passes on what comes until the work is done.
apart_end_t listen(int socket, const apart_t& caller) {
    for (;;) {
        pollfd ready{socket, POLLIN, 0};
        if (poll(&ready, 1, idle_interval) > 0) {
            answer_t answer;
            if (!receive_answer(socket, answer)) {
                return apart_end_t::died;
            }
            for (const auto& [stream, text] : answer.record) {
                if (stream == stream_t::message) {
                    send_word(socket, caller.heard(text));
                } else {
                    replay(stream, text);
                }
            }
            if (answer.succeeded) {
                return apart_end_t::done;
            }
        }
        send_word(socket, caller.idle());
    }
}

// Closes the line and takes leave of the worker, also where a handler throws.
class worker_end_t {
  public:
    worker_end_t(int socket, pid_t process) : socket_(socket), process_(process) {}
    ~worker_end_t() {
        close(socket_);
        while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    worker_end_t(const worker_end_t&) = delete;
    worker_end_t& operator=(const worker_end_t&) = delete;

  private:
    int socket_;
    pid_t process_;
};

}  // namespace

apart_end_t run_apart(const std::function<void(caller_line_t&)>& work, const apart_t& caller) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        return apart_end_t::not_started;
    }
    std::cout.flush();
    const pid_t self = getpid();
    const pid_t process = fork();
    if (process == 0) {
        close(ends[0]);
        work_apart(ends[1], self, work);
    }
    close(ends[1]);
    if (process < 0) {
        close(ends[0]);
        return apart_end_t::not_started;
    }
    const worker_end_t end(ends[0], process);
    return listen(ends[0], caller);
}

}  // namespace libutils
