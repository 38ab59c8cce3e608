#pragma once

#include <vector>

#include "album/progress.h"

namespace taloram {

// Measures one stage for progress_signals_t::worked.
class work_meter_t {
  public:
    // `amounts` are the bytes of each file that the stage counts, 0 where there is nothing to do. Without any nothing
    // is told.
    work_meter_t(progress_signals_t& progress, stage_t stage, std::vector<double> amounts);

    // The stage's progress: this part of all its files is done.
    void advance(double fraction);

  private:
    progress_signals_t& progress_;
    std::vector<double> amounts_;
    size_t passed_ = 0;  // files, also those without anything to do
    work_t work_;
};

// The length of a file, 0 where there is none.
[[nodiscard]] double length_of(const std::string& path);

}  // namespace taloram
