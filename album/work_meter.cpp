#include "album/work_meter.h"

#include <sys/stat.h>

#include <cmath>
#include <utility>

namespace taloram {

work_meter_t::work_meter_t(progress_signals_t& progress, stage_t stage, std::vector<double> amounts)
    : progress_(progress), amounts_(std::move(amounts)) {
    work_.stage = stage;
    for (const double amount : amounts_) {
        work_.files += amount > 0 ? 1 : 0;
        work_.total += amount;
    }
    if (work_.files != 0) {
        progress_.worked.emit(work_);
    }
}

void work_meter_t::advance(double fraction) {
    const auto passed = static_cast<size_t>(std::lround(fraction * static_cast<double>(amounts_.size())));
    const size_t before = work_.files_done;
    for (; passed_ < passed && passed_ < amounts_.size(); ++passed_) {
        work_.files_done += amounts_[passed_] > 0 ? 1 : 0;
        work_.done += amounts_[passed_];
    }
    if (work_.files_done != before) {
        progress_.worked.emit(work_);
    }
}

double length_of(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? static_cast<double>(status.st_size) : 0;
}

}  // namespace taloram
