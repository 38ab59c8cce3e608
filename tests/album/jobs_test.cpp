#include "album/jobs.h"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>

#include "album/sizes/reduced_sizes.h"
#include "tests/album/album_fixture.h"

namespace {

// Ends every process that this one has started.
void kill_children() {
    const std::string pid = std::to_string(getpid());
    std::ifstream children("/proc/" + pid + "/task/" + pid + "/children");
    for (pid_t child = 0; children >> child;) {
        kill(child, SIGKILL);
    }
}

TEST(Jobs, NumberComesFromTheEnvironmentWhereItIsOne) {
    const unsigned processors = libutils::processor_count();
    ASSERT_GE(processors, 1U);
    const std::pair<const char*, unsigned> cases[] = {
        {"1", 1},           {"7", 7},         {"256", 256},       {"257", processors}, {"0", processors},
        {"-1", processors}, {"", processors}, {"2x", processors}, {" 2", processors}};
    for (const auto& [text, jobs] : cases) {
        setenv("TALORAM_JOBS", text, 1);
        EXPECT_EQ(default_jobs(), jobs) << text;
    }
    unsetenv("TALORAM_JOBS");
    EXPECT_EQ(default_jobs(), processors);
}

TEST_F(album_test_t, a_process_that_dies_costs_its_photograph_alone) {
    std::vector<files_t> files;
    for (const char* name : {"1.jpg", "2.jpg", "3.jpg", "4.jpg", "5.jpg", "6.jpg"}) {
        put(album + "/original/" + name, make_jpeg({.width = 1200, .height = 900}));
        files.push_back({name, 0});
    }
    bool killed = false;
    g_workers = {2, [&] {
                     if (!std::exchange(killed, true)) {
                         kill_children();
                     }
                 }};
    std::vector<std::string> failed;
    std::string lines;
    const std::string text = outcome([&] {
        return shrink(album, files, progress, [&](const files_t& file) {
            failed.push_back(file.filename);
            lines += file.filename + ": the process that worked on it has died.\n";
            return true;
        });
    });
    g_workers = {};
    EXPECT_EQ(text, "true\n" + lines);
    EXPECT_TRUE(failed.size() == 1 || failed.size() == 2) << failed.size();
    EXPECT_EQ(steps.size(), files.size());
    EXPECT_TRUE(std::is_sorted(steps.begin(), steps.end()));
    for (const files_t& file : files) {
        const bool has_failed = std::find(failed.begin(), failed.end(), file.filename) != failed.end();
        EXPECT_TRUE(has_failed || fs::exists(album + "/thumb/" + file.filename)) << file.filename;
    }
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a process was left behind";
    EXPECT_TRUE(shrinkupdate(files, album, silent));
    for (const files_t& file : files) {
        EXPECT_TRUE(fs::exists(album + "/thumb/" + file.filename)) << file.filename;
    }
}

}  // namespace
