#pragma once

#include <string>

namespace taloram {

// For g_wait_for_writer: while another program writes to `directory` a box says so. False when the user cancelled it.
// The box goes by itself soon after the last call.
[[nodiscard]] bool wait_for_writer(const std::string& directory);

}  // namespace taloram
