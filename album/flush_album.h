#pragma once

#include <string>

namespace taloram {

// Waits until everything of an album is on its disks, those that its directories lead to by links too. The windows stay
// alive meanwhile (g_workers.idle). False after a report.
[[nodiscard]] bool flush_album(const std::string& album);

}  // namespace taloram
