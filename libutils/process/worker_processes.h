#pragma once

#include <cstddef>
#include <functional>

#include "libutils/process/goes_on.h"

namespace libutils {

enum class task_end_t {
    succeeded,
    failed,
    died,  // its process ended in the middle, by a signal or a fatal error of a library
};

struct workers_t {
    unsigned jobs = 1;            // tasks at work at the same time; 1: in the caller's own process
    std::function<void()> idle;   // called some twenty times a second while the caller waits; may be empty
    goes_on_t goes_on = nullptr;  // asked before a task begins, and while the caller waits
};

// The number of processors that this process may use, at least 1.
[[nodiscard]] unsigned processor_count();

// Runs task(0) to task(count - 1), in forked processes when there is more than one job, and returns when all are done.
//
// `finished` is called in the caller's process, in the order of the tasks, behind what the task wrote to std::cout and
// std::cerr, which appears there as well. When it, or goes_on, returns false nothing more is started, written or
// called; tasks that are at work by then come to their end unseen. Whatever else a task changes in memory is lost with
// its process. A worker that dies is replaced; one whose caller dies ends at once. Where the system has no more
// processes, tasks run in the caller's.
void run_tasks(size_t count, const workers_t& workers, const std::function<bool(size_t)>& task,
               const std::function<bool(size_t, task_end_t)>& finished);

}  // namespace libutils
