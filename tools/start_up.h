#pragma once

#include "album/progress.h"
#include "tools/command_line.h"
#include "tools/progress_line.h"

namespace talomake {

// Loads the catalogue and the settings file; then options win.
void start_up(const char* program, const run_options_t& options = {});

// The engine's signals, connected to a progress line.
class shown_progress_t {
  public:
    explicit shown_progress_t(progress_mode_t mode);

    taloram::progress_signals_t signals;

  private:
    progress_line_t line_;
};

}  // namespace talomake
