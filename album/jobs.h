#pragma once

#include "libutils/process/worker_processes.h"

namespace taloram {

// How many photographs the engine works on at a time, and what is called while it waits. All in the caller's process
// unless a program says otherwise.
extern libutils::workers_t g_workers;

constexpr unsigned most_jobs = 256;

// The environment's TALORAM_JOBS where that is a number from 1 to most_jobs, else the number of processors.
[[nodiscard]] unsigned default_jobs();

}  // namespace taloram
