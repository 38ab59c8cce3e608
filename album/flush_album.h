#pragma once

#include <string>
#include <system_error>

namespace taloram {

// Waits until everything of an album is on its disks, those that its directories lead to by links too. The windows stay
// alive meanwhile (g_workers.idle).
[[nodiscard]] std::error_code flush_album(const std::string& album);

}  // namespace taloram
