#include <chrono>
#include <filesystem>

#include "tests/fuzz/fuzz_target.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

// Runs saved inputs through a target: replay_<target> <file or directory>...
int main(int argc, char** argv) {
    using namespace test_support;
    std::ostream out(std::cout.rdbuf());  // targets silence the standard streams
    std::vector<std::string> inputs;
    for (const std::string& path : std::vector<std::string>(argv + 1, argv + argc)) {
        const auto files = std::filesystem::is_regular_file(path) ? std::vector{path} : files_below(path);
        inputs.insert(inputs.end(), files.begin(), files.end());
    }
    std::pair<double, std::string> slowest;  // in seconds
    for (const std::string& path : inputs) {
        const blob_t input = read_file(path);
        const auto start = std::chrono::steady_clock::now();
        LLVMFuzzerTestOneInput(input.data(), input.size());
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        slowest = std::max(slowest, {taken.count(), path});
    }
    out << inputs.size() << " inputs; the slowest takes " << slowest.first << " s: " << slowest.second << std::endl;
    return inputs.empty() ? 1 : 0;
}
