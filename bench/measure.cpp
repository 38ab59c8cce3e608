#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>

// measure <command> [<argument>...]: runs the command and writes one line to standard error: seconds on the clock,
// seconds of processors, and the KiB of memory of its largest process. Ends as the command does.
namespace {

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: measure <command> [<argument>...]\n");
        return 2;
    }
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        execvp(argv[1], argv + 1);
        std::perror(argv[1]);
        _exit(127);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child) {
        std::perror("measure");
        return 1;
    }
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    std::fprintf(stderr, "%.4f %.4f %ld\n", passed.count(), seconds(usage.ru_utime) + seconds(usage.ru_stime),
                 usage.ru_maxrss);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}
