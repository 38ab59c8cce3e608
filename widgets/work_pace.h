#pragma once

#include <array>
#include <chrono>
#include <optional>

#include "album/progress.h"

namespace taloram {

// How fast measured work goes on and when its stage will be done, by the bytes that were done and the time that it
// took: while something was worked on and nothing was held. What was measured of a stage counts for the next album,
// too.
class work_pace_t {
  public:
    using time_t = std::chrono::steady_clock::time_point;

    void note(const work_t& work, time_t now);

    // The work stood still for so long.
    void held(std::chrono::steady_clock::duration time) { last_time_ += time; }

    // Nothing until two files and a second are measured.
    [[nodiscard]] std::optional<double> files_a_second() const;
    [[nodiscard]] std::optional<double> seconds_left(time_t now) const;

    [[nodiscard]] const work_t& work() const { return last_; }

  private:
    struct measured_t {
        size_t files = 0;
        double amount = 0;   // bytes
        double seconds = 0;  // that they took
    };
    [[nodiscard]] const measured_t* measured() const;

    std::array<measured_t, std::size(all_stages)> measured_;  // by stage
    work_t last_;
    time_t last_time_;
};

}  // namespace taloram
