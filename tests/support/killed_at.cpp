#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <set>

// Kills a program as it begins its n-th system call that may change files:
//
//   killed_at <n> <program> <argument>...
//
// Ends with 137 then, with the program's own status when it made fewer, and with 77 where the system lets nobody trace.
namespace {

constexpr int status_cannot = 77;
constexpr int status_wrong_use = 2;

bool changes_files(uint64_t call) {
    static const std::set<uint64_t> calls = {
        SYS_openat, SYS_write, SYS_mkdirat, SYS_unlinkat, SYS_renameat2, SYS_linkat, SYS_fsync, SYS_ftruncate,
#ifdef SYS_rename
        SYS_mkdir,  SYS_rmdir, SYS_unlink,  SYS_rename,   SYS_link,      SYS_open,
#endif
    };
    return calls.count(call) != 0;
}

int end_status(int status) {
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

// Follows the program from stop to stop.
int trace(pid_t child, unsigned long calls_before) {
    int status = 0;
    waitpid(child, &status, 0);
    if (!WIFSTOPPED(status) ||
        ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL) != 0) {
        return status_cannot;
    }
    int passed_on = 0;
    for (;;) {
        if (ptrace(PTRACE_SYSCALL, child, nullptr, passed_on) != 0 || waitpid(child, &status, 0) != child) {
            return status_cannot;
        }
        if (!WIFSTOPPED(status)) {
            return end_status(status);
        }
        const bool at_call = WSTOPSIG(status) == (SIGTRAP | 0x80);
        passed_on = at_call || WSTOPSIG(status) == SIGTRAP ? 0 : WSTOPSIG(status);
        __ptrace_syscall_info info{};
        if (at_call && ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info) > 0 &&
            info.op == PTRACE_SYSCALL_INFO_ENTRY && changes_files(info.entry.nr) && --calls_before == 0) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return end_status(status);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "killed_at: <n> <program> <argument>...\n";
        return status_wrong_use;
    }
    const pid_t child = fork();
    if (child == 0) {
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0) {
            execv(argv[2], argv + 2);
        }
        _exit(status_cannot);
    }
    return child < 0 ? status_cannot : trace(child, std::strtoul(argv[1], nullptr, 10));
}
