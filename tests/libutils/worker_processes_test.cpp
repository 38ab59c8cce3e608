#include "libutils/process/worker_processes.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <iostream>
#include <stdexcept>

#include "libutils/diagnostics.h"
#include "tests/support/fixtures.h"

using libutils::task_end_t;
using test_support::stderr_of;

namespace {

constexpr const char* letters = "sfd";  // by task_end_t

TEST(Workers, FinishInOrderWithTheirLines) {
    const pid_t caller = getpid();
    for (const unsigned jobs : {1U, 2U, 3U, 9U}) {
        SCOPED_TRACE(jobs);
        std::string ends;
        const auto task = [&](size_t i) {
            EXPECT_EQ(getpid() == caller, jobs == 1);
            usleep(static_cast<useconds_t>((7 - i % 7) * 2000));  // later ones overtake
            libutils::report("line ", i);
            std::cerr << (i == 3 ? std::string(300000, 'x') + '\n' : "");
            return i % 3 != 0;
        };
        std::string text = stderr_of([&] {
            libutils::run_tasks(8, {jobs, {}}, task, [&](size_t i, task_end_t end) {
                libutils::report("end ", i);
                ends += letters[static_cast<int>(end)];
                return true;
            });
        });
        EXPECT_EQ(ends, "fssfssfs");
        std::string wanted;
        for (int i = 0; i < 8; ++i) {
            wanted += "line " + std::to_string(i) + '\n' + (i == 3 ? std::string(300000, 'x') + '\n' : "") + "end " +
                      std::to_string(i) + '\n';
        }
        EXPECT_TRUE(text == wanted) << text.substr(0, 400);
    }
}

TEST(Workers, DyingOnesFailTheirTaskAlone) {
    std::string ends;
    const auto task = [](size_t i) {
        switch (i) {
            case 1:
                raise(SIGKILL);
                break;
            case 2:
                _exit(0);
            case 5:
                throw std::runtime_error("no way out of a worker");
            default:
                break;
        }
        return true;
    };
    size_t idle = 0;
    libutils::run_tasks(8, {2, [&idle] { ++idle; }}, task, [&](size_t /*i*/, task_end_t end) {
        ends += letters[static_cast<int>(end)];
        return true;
    });
    EXPECT_EQ(ends, "sddssdss");
    EXPECT_GT(idle, 0U);
}

TEST(Workers, StopAtTheCallersWish) {
    for (const unsigned jobs : {1U, 2U}) {
        std::string seen;
        const std::string text = stderr_of([&] {
            const auto task = [](size_t i) {
                libutils::report(i);
                return true;
            };
            libutils::run_tasks(100, {jobs, {}}, task, [&](size_t i, task_end_t /*end*/) { return i < 2; });
        });
        EXPECT_EQ(text, "0\n1\n2\n") << jobs;
    }
}

}  // namespace
