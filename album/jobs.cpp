#include "album/jobs.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <string_view>

namespace taloram {

libutils::workers_t g_workers;

unsigned default_jobs() {
    const char* const variable = std::getenv("TALORAM_JOBS");
    const std::string_view text = variable == nullptr ? "" : variable;
    unsigned jobs = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), jobs);
    if (error == std::errc() && end == text.data() + text.size() && jobs >= 1 && jobs <= most_jobs) {
        return jobs;
    }
    return std::min(libutils::processor_count(), most_jobs);
}

}  // namespace taloram
