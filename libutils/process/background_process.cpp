#include "libutils/process/background_process.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <iostream>

namespace libutils {

namespace {

// Never returns: what the caller had in hand at the fork must not be done a second time.
[[noreturn]] void run(int descriptor, pid_t caller,
                      const std::function<bool(const background_process_t::send_t&)>& work) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const auto send = [descriptor](std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t written = write(descriptor, bytes.data(), bytes.size());
            if (written < 0 && errno != EINTR) {
                _exit(EXIT_FAILURE);  // nobody reads it any more
            }
            bytes.remove_prefix(written < 0 ? 0 : static_cast<size_t>(written));
        }
    };
    bool succeeded = false;
    try {
        succeeded = getppid() == caller && work(send);
    } catch (...) {
    }
    _exit(succeeded ? EXIT_SUCCESS : EXIT_FAILURE);
}

}  // namespace

void background_process_t::start(const std::function<bool(const send_t&)>& work) {
    end();
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        return;
    }
    std::cout.flush();
    const pid_t caller = getpid();
    process_ = fork();
    if (process_ == 0) {
        close(ends[0]);
        run(ends[1], caller, work);
    }
    close(ends[1]);
    if (process_ < 0) {
        close(ends[0]);
        return;
    }
    descriptor_ = ends[0];
    fcntl(descriptor_, F_SETFL, O_NONBLOCK);
}

void background_process_t::end() {
    if (process_ >= 0) {
        close(descriptor_);
        kill(process_, SIGKILL);
        while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
        }
        process_ = -1;
        descriptor_ = -1;
    }
}

background_process_t::state_t background_process_t::receive(std::string& bytes) {
    constexpr size_t most_at_once = size_t{1} << 16;  // bytes; a pipe holds no more
    if (process_ < 0) {
        return state_t::failed;
    }
    std::array<char, most_at_once> block{};
    const ssize_t count = read(descriptor_, block.data(), block.size());
    if (count > 0) {
        bytes.append(block.data(), static_cast<size_t>(count));
    }
    if (count > 0 || (count < 0 && (errno == EAGAIN || errno == EINTR))) {
        return state_t::running;
    }
    int status = 0;
    while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
    }
    close(descriptor_);
    process_ = -1;
    descriptor_ = -1;
    return WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS ? state_t::succeeded : state_t::failed;
}

}  // namespace libutils
