// Makes system calls of a program fail, as broken disks, quotas and network file systems do:
//
//   FAILING_CALLS='<call>:<error>:<calls that succeed first>:<part of a path>[;...]'
//   LD_PRELOAD=.../bin/failing_calls.so ASAN_OPTIONS=verify_asan_link_order=0:... program
//
//   FAILING_CALLS='readdir:EIO:4:/card'        listings of .../card... break off after four entries, "." and ".." are
//   two FAILING_CALLS='close:EDQUOT:0:/original/'  every close of a file in original/ fails; the file is closed all the
//   same FAILING_CALLS='flock:EOPNOTSUPP:0:'        no file system has locks
//
// With NOTE for the error they go on, and a line "<call> <path>" on standard error tells of each; with SLOW they go on
// after a second.
//
// From the call after those that succeed on, every call on a path that holds the part fails; each rule counts for
// itself, and each process goes on counting from where its parent was. The path is the one that a call is given, or
// what its descriptor is open on: for a file without a name "<directory>/#<number> (deleted)". Of two paths, as of
// link and rename, either counts. Calls: those defined below; one more is a function more.

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/preloaded.h"

using preloaded::next;

namespace {

struct rule_t {
    std::string call;
    int error = 0;
    long succeeding = 0;
    std::string part;
};

constexpr int noted = -1;
constexpr int slow = -2;

int number_of(const std::string& name) {
    if (name == "NOTE") {
        return noted;
    }
    if (name == "SLOW") {
        return slow;
    }
    for (int error = 1; error < 200; ++error) {
        const char* const known = strerrorname_np(error);
        if (known != nullptr && name == known) {
            return error;
        }
    }
    std::fprintf(stderr, "FAILING_CALLS: no error is called %s.\n", name.c_str());
    std::abort();
}

std::vector<rule_t> read_rules() {
    std::vector<rule_t> rules;
    const char* const text = std::getenv("FAILING_CALLS");
    std::istringstream in(text == nullptr ? "" : text);
    for (std::string line; std::getline(in, line, ';');) {
        std::istringstream fields(line);
        rule_t rule;
        std::string error;
        std::string succeeding;
        std::getline(fields, rule.call, ':');
        std::getline(fields, error, ':');
        std::getline(fields, succeeding, ':');
        std::getline(fields, rule.part);
        rule.error = number_of(error);
        rule.succeeding = std::atol(succeeding.c_str());
        rules.push_back(std::move(rule));
    }
    return rules;
}

// What the call on these paths has to fail with, 0 when it may go on.
int fault(std::string_view call, std::string_view path, std::string_view other = "") {
    static std::vector<rule_t> rules = read_rules();
    for (rule_t& rule : rules) {
        const bool is_meant = path.find(rule.part) != std::string_view::npos ||
                              (!other.empty() && other.find(rule.part) != std::string_view::npos);
        if (rule.call != call || !is_meant || rule.succeeding-- > 0) {
            continue;
        }
        if (rule.error == slow) {
            sleep(1);
            continue;
        }
        if (rule.error != noted) {
            return rule.error;
        }
        const int before = errno;
        dprintf(STDERR_FILENO, "%.*s %.*s\n", static_cast<int>(call.size()), call.data(), static_cast<int>(path.size()),
                path.data());
        errno = before;
    }
    return 0;
}

std::string path_of(int descriptor) {
    const int before = errno;
    char path[4096];
    const ssize_t length = readlink(("/proc/self/fd/" + std::to_string(descriptor)).c_str(), path, sizeof path);
    errno = before;
    return length < 0 ? "" : std::string(path, static_cast<size_t>(length));
}

template <typename Result, typename Call>
Result unless_fault(int error, Result failed, Call call) {
    if (error != 0) {
        errno = error;
        return failed;
    }
    return call();
}

}  // namespace

extern "C" {

dirent* readdir(DIR* stream) {
    static auto* const real = next<dirent*(DIR*)>("readdir");
    return unless_fault<dirent*>(fault("readdir", path_of(dirfd(stream))), nullptr, [&] { return real(stream); });
}

ssize_t read(int descriptor, void* bytes, size_t size) {
    static auto* const real = next<ssize_t(int, void*, size_t)>("read");
    return unless_fault<ssize_t>(fault("read", path_of(descriptor)), -1, [&] { return real(descriptor, bytes, size); });
}

ssize_t pread(int descriptor, void* bytes, size_t size, off_t offset) {
    static auto* const real = next<ssize_t(int, void*, size_t, off_t)>("pread");
    return unless_fault<ssize_t>(fault("pread", path_of(descriptor)), -1,
                                 [&] { return real(descriptor, bytes, size, offset); });
}

ssize_t write(int descriptor, const void* bytes, size_t size) {
    static auto* const real = next<ssize_t(int, const void*, size_t)>("write");
    return unless_fault<ssize_t>(fault("write", path_of(descriptor)), -1,
                                 [&] { return real(descriptor, bytes, size); });
}

int close(int descriptor) {
    static auto* const real = next<int(int)>("close");
    const int error = fault("close", path_of(descriptor));
    const int result = real(descriptor);
    return unless_fault(error, -1, [&] { return result; });
}

int fsync(int descriptor) {
    static auto* const real = next<int(int)>("fsync");
    return unless_fault(fault("fsync", path_of(descriptor)), -1, [&] { return real(descriptor); });
}

int posix_fadvise(int descriptor, off_t offset, off_t length, int advice) {
    static auto* const real = next<int(int, off_t, off_t, int)>("posix_fadvise");
    const int error = fault("posix_fadvise", path_of(descriptor));
    return error != 0 ? error : real(descriptor, offset, length, advice);
}

int flock(int descriptor, int operation) noexcept {
    static auto* const real = next<int(int, int)>("flock");
    return unless_fault(fault("flock", path_of(descriptor)), -1, [&] { return real(descriptor, operation); });
}

int linkat(int from_directory, const char* from, int to_directory, const char* to, int flags) noexcept {
    static auto* const real = next<int(int, const char*, int, const char*, int)>("linkat");
    return unless_fault(fault("linkat", from, to), -1,
                        [&] { return real(from_directory, from, to_directory, to, flags); });
}

int rename(const char* from, const char* to) noexcept {
    static auto* const real = next<int(const char*, const char*)>("rename");
    return unless_fault(fault("rename", from, to), -1, [&] { return real(from, to); });
}

int unlink(const char* path) noexcept {
    static auto* const real = next<int(const char*)>("unlink");
    return unless_fault(fault("unlink", path), -1, [&] { return real(path); });
}

int stat(const char* path, struct stat* status) noexcept {
    static auto* const real = next<int(const char*, struct stat*)>("stat");
    return unless_fault(fault("stat", path), -1, [&] { return real(path, status); });
}

int utimensat(int directory, const char* path, const timespec times[2], int flags) noexcept {
    static auto* const real = next<int(int, const char*, const timespec*, int)>("utimensat");
    return unless_fault(fault("utimensat", path == nullptr ? path_of(directory) : path), -1,
                        [&] { return real(directory, path, times, flags); });
}

int open(const char* path, int flags, ...) {
    static auto* const real = next<int(const char*, int, ...)>("open");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = preloaded::open_mode(flags, arguments);
    va_end(arguments);
    return unless_fault(fault("open", path), -1, [&] { return real(path, flags, mode); });
}

}  // extern "C"
