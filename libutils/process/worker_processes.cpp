#include "libutils/process/worker_processes.h"

#include <poll.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <iostream>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "libutils/process/process_messages.h"

namespace libutils {

namespace {

constexpr int idle_interval = 50;  // milliseconds

// A worker's life. Never returns: what the caller had in hand at the fork must not be done a second time.
[[noreturn]] void work(int socket, pid_t caller, const std::function<bool(size_t)>& task) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    try {
        answer_t answer;
        recorder_t output(answer.record, stream_t::output);
        recorder_t error(answer.record, stream_t::error);
        std::cout.rdbuf(&output);
        std::cerr.rdbuf(&error);
        uint64_t index = 0;
        while (getppid() == caller && receive_all(socket, &index, sizeof index)) {
            answer.record.clear();
            answer.succeeded = task(index);
            if (!send_answer(socket, answer)) {
                break;
            }
        }
    } catch (...) {
        _exit(1);
    }
    _exit(0);
}

class worker_t {
  public:
    worker_t() = default;
    ~worker_t() { end(); }
    worker_t(const worker_t&) = delete;
    worker_t& operator=(const worker_t&) = delete;

    // Gives the worker a task, starting its process where there is none. False when that is not possible.
    [[nodiscard]] bool begin(size_t index, const std::function<bool(size_t)>& task,
                             const std::vector<worker_t>& colleagues) {
        const uint64_t number = index;
        for (int attempt = 0; attempt < 2; ++attempt) {
            if (process_ < 0 && !start(task, colleagues)) {
                return false;
            }
            if (send_all(socket_, &number, sizeof number)) {
                index_ = index;
                return true;
            }
            end();  // it died while it had nothing to do
        }
        return false;
    }

    [[nodiscard]] bool is_busy() const { return index_.has_value(); }
    [[nodiscard]] size_t index() const { return *index_; }
    [[nodiscard]] int socket() const { return socket_; }

    // Empty when the process died.
    [[nodiscard]] std::optional<answer_t> take_answer() {
        index_.reset();
        answer_t answer;
        if (!receive_answer(socket_, answer)) {
            end();
            return std::nullopt;
        }
        return answer;
    }

  private:
    bool start(const std::function<bool(size_t)>& task, const std::vector<worker_t>& colleagues) {
        int ends[2];
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
            return false;
        }
        std::cout.flush();
        const pid_t caller = getpid();
        const pid_t process = fork();
        if (process == 0) {
            close(ends[0]);
            // A socket end kept here would hide from the caller that a colleague died.
            for (const worker_t& colleague : colleagues) {
                if (colleague.socket_ >= 0) {
                    close(colleague.socket_);
                }
            }
            work(ends[1], caller, task);
        }
        close(ends[1]);
        if (process < 0) {
            close(ends[0]);
            return false;
        }
        socket_ = ends[0];
        process_ = process;
        return true;
    }

    void end() {
        if (process_ >= 0) {
            close(socket_);
            while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
            }
            process_ = -1;
            socket_ = -1;
        }
    }

    pid_t process_ = -1;
    int socket_ = -1;
    std::optional<size_t> index_;
};

// One run over all tasks with more than one job.
class pool_t {
  public:
    pool_t(size_t count, const workers_t& workers, const std::function<bool(size_t)>& task,
           const std::function<bool(size_t, task_end_t)>& finished)
        : count_(count),
          options_(workers),
          task_(task),
          finished_(finished),
          workers_(std::min<size_t>(workers.jobs, count)) {}

    void run() {
        while (next_finished_ < count_ && goes_on(options_.goes_on)) {
            hand_out();
            wait();
            while (!done_.empty() && done_.begin()->first == next_finished_) {
                const done_t& done = done_.begin()->second;
                for (const auto& [stream, text] : done.record) {
                    replay(stream, text);
                }
                if (!finished_(next_finished_, done.end)) {
                    return;
                }
                done_.erase(done_.begin());
                ++next_finished_;
            }
        }
    }

  private:
    struct done_t {
        task_end_t end;
        record_t record;
    };

    // How far ahead of an unfinished task others may be done: their output waits in memory.
    static constexpr size_t longest_lead = 1024;

    void hand_out() {
        for (worker_t& worker : workers_) {
            if (next_task_ >= count_ || next_task_ - next_finished_ >= longest_lead) {
                return;
            }
            if (worker.is_busy()) {
                continue;
            }
            if (worker.begin(next_task_, task_, workers_)) {
                ++next_task_;
            } else if (std::none_of(workers_.begin(), workers_.end(), [](const auto& w) { return w.is_busy(); })) {
                const bool succeeded = task_(next_task_);
                done_[next_task_++] = {succeeded ? task_end_t::succeeded : task_end_t::failed, {}};
                return;
            }
        }
    }

    void wait() {
        std::vector<pollfd> sockets;
        for (const worker_t& worker : workers_) {
            sockets.push_back({worker.is_busy() ? worker.socket() : -1, POLLIN, 0});
        }
        const bool any = std::any_of(sockets.begin(), sockets.end(), [](const pollfd& s) { return s.fd >= 0; });
        if (!any || poll(sockets.data(), sockets.size(), options_.idle || options_.goes_on ? idle_interval : -1) < 0) {
            return;
        }
        for (size_t i = 0; i < sockets.size(); ++i) {
            if (sockets[i].revents != 0) {
                take(workers_[i]);
            }
        }
        if (options_.idle) {
            options_.idle();
        }
    }

    void take(worker_t& worker) {
        const size_t index = worker.index();
        std::optional<answer_t> answer = worker.take_answer();
        if (!answer) {
            done_[index] = {task_end_t::died, {}};
        } else {
            const task_end_t end = answer->succeeded ? task_end_t::succeeded : task_end_t::failed;
            done_[index] = {end, std::move(answer->record)};
        }
    }

    size_t count_;
    const workers_t& options_;
    const std::function<bool(size_t)>& task_;
    const std::function<bool(size_t, task_end_t)>& finished_;
    std::vector<worker_t> workers_;
    std::map<size_t, done_t> done_;  // not yet finished before the caller
    size_t next_task_ = 0;
    size_t next_finished_ = 0;
};

}  // namespace

unsigned processor_count() {
    cpu_set_t processors;
    CPU_ZERO(&processors);
    const int count = sched_getaffinity(0, sizeof processors, &processors) == 0 ? CPU_COUNT(&processors) : 1;
    return static_cast<unsigned>(std::max(count, 1));
}

void run_tasks(size_t count, const workers_t& workers, const std::function<bool(size_t)>& task,
               const std::function<bool(size_t, task_end_t)>& finished) {
    if (workers.jobs > 1 && count > 1) {
        pool_t(count, workers, task, finished).run();
        return;
    }
    for (size_t i = 0; i < count && goes_on(workers.goes_on); ++i) {
        if (!finished(i, task(i) ? task_end_t::succeeded : task_end_t::failed)) {
            return;
        }
    }
}

}  // namespace libutils
