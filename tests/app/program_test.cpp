#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>

namespace {

struct run_t {
    int status = -1;
    std::string output;  // both streams
};

run_t run_without_display(const std::string& arguments) {
    run_t run;
    std::FILE* pipe =
        popen(("env -u DISPLAY -u WAYLAND_DISPLAY " TALORAM_PROGRAM " " + arguments + " 2>&1").c_str(), "r");
    std::array<char, 256> buffer{};
    while (pipe != nullptr && std::fgets(buffer.data(), buffer.size(), pipe) != nullptr) {
        run.output += buffer.data();
    }
    run.status = pipe == nullptr ? -1 : WEXITSTATUS(pclose(pipe));
    return run;
}

TEST(Program, HelpsWithoutADisplay) {
    const std::string program = TALORAM_PROGRAM;
    for (const char* arguments : {"-h", "-h x", "one", "one two three", "--wrong"}) {
        SCOPED_TRACE(arguments);
        const run_t run = run_without_display(arguments);
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.output, "usage: " + program + " [-h] [<from dir> <to dir>]\n");
    }
    for (const char* arguments : {"", "from to"}) {
        SCOPED_TRACE(arguments);
        const run_t run = run_without_display(arguments);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.output, program + ": can't open a display; windows need one.\n");
    }
}

}  // namespace
