#include "album/write_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <list>
#include <thread>

#include "libutils/diagnostics.h"
#include "libutils/text/text.h"

namespace taloram {

std::function<bool(const std::string& directory)> g_wait_for_writer;

struct write_lock_t::held_t {
    // The locks of this process. A worker has its own copy, whose descriptors share the process's locks.
    static std::list<held_t>& all() {
        static std::list<held_t> locks;
        return locks;
    }

    dev_t device;
    ino_t inode;
    int descriptor;
    unsigned holders;
};

namespace {

constexpr std::chrono::milliseconds poll_interval{100};

enum class attempt_t { locked, busy, refused };

attempt_t try_lock(int descriptor) {
    while (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EINTR) {
            return errno == EWOULDBLOCK ? attempt_t::busy : attempt_t::refused;
        }
    }
    return attempt_t::locked;
}

void report_refusal(const std::string& directory, int error) {
    static bool is_told = false;
    if (!is_told) {
        is_told = true;
        libutils::report(libutils::printable(directory), ": can't be locked, ", std::strerror(error),
                         "; let no other program write there meanwhile.");
    }
}

// Nobody is told of a moment's wait.
bool goes_on_waiting(const std::string& directory, bool is_first) {
    std::this_thread::sleep_for(poll_interval);
    return is_first || !g_wait_for_writer || g_wait_for_writer(directory);
}

}  // namespace

// The path is opened for each attempt: whoever held the lock may have renamed or removed the directory.
std::error_code write_lock_t::acquire(const std::string& directory) {
    const char* const path = directory.empty() ? "." : directory.c_str();
    for (bool is_first = true;; is_first = false) {
        const int descriptor = open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        struct stat status {};
        if (descriptor < 0 || fstat(descriptor, &status) != 0) {
            if (errno != ENOENT && errno != ENOTDIR) {
                report_refusal(directory, errno);
            }
            return {};
        }
        auto& locks = held_t::all();
        const auto found = std::find_if(locks.begin(), locks.end(), [&](const held_t& lock) {
            return lock.device == status.st_dev && lock.inode == status.st_ino;
        });
        if (found != locks.end()) {
            close(descriptor);
            ++found->holders;
            held_ = &*found;
            return {};
        }
        const attempt_t attempt = try_lock(descriptor);
        if (attempt == attempt_t::refused) {
            report_refusal(directory, errno);
            close(descriptor);
            return {};
        }
        struct stat named {};
        const bool is_still_there =
            stat(path, &named) == 0 && named.st_dev == status.st_dev && named.st_ino == status.st_ino;
        if (attempt == attempt_t::locked && is_still_there) {
            locks.push_front({status.st_dev, status.st_ino, descriptor, 1});
            held_ = &locks.front();
            return {};
        }
        close(descriptor);
        if (attempt == attempt_t::busy && !goes_on_waiting(directory, is_first)) {
            return std::make_error_code(std::errc::operation_canceled);
        }
    }
}

// Unlocked before it is closed, because a worker may still have the descriptor.
write_lock_t::~write_lock_t() {
    if (held_ == nullptr || --held_->holders != 0) {
        return;
    }
    flock(held_->descriptor, LOCK_UN);
    close(held_->descriptor);
    held_t::all().remove_if([this](const held_t& lock) { return &lock == held_; });
}

bool lock_album(write_lock_t& lock, const std::string& directory) {
    const std::error_code given_up = lock.acquire(directory);
    if (given_up) {
        libutils::report(libutils::printable(directory), ": another program writes there, ", given_up.message());
    }
    return !given_up;
}

}  // namespace taloram
