#include "widgets/work_pace.h"

#include <algorithm>

namespace taloram {

namespace {

double seconds_of(std::chrono::steady_clock::duration time) {
    return std::chrono::duration<double>(time).count();
}

}  // namespace

void work_pace_t::note(const work_t& work, time_t now) {
    if (work.stage == last_.stage && work.files_done > last_.files_done) {
        measured_t& measured = measured_.at(static_cast<size_t>(work.stage));
        measured.files += work.files_done - last_.files_done;
        measured.amount += work.done - last_.done;
        measured.seconds += seconds_of(now - last_time_);
    }
    last_ = work;
    last_time_ = now;
}

const work_pace_t::measured_t* work_pace_t::measured() const {
    const measured_t& measured = measured_.at(static_cast<size_t>(last_.stage));
    return measured.files >= 2 && measured.seconds >= 1 && measured.amount > 0 ? &measured : nullptr;
}

std::optional<double> work_pace_t::files_a_second() const {
    const measured_t* const pace = measured();
    return pace == nullptr ? std::nullopt : std::optional(static_cast<double>(pace->files) / pace->seconds);
}

std::optional<double> work_pace_t::seconds_left(time_t now) const {
    const measured_t* const pace = measured();
    if (pace == nullptr) {
        return {};
    }
    const double left = (last_.total - last_.done) * pace->seconds / pace->amount - seconds_of(now - last_time_);
    return std::max(left, 0.0);
}

}  // namespace taloram
