#pragma once

#include <string>

namespace taloram {

// What an update that turns a photograph by `count` quarter turns (0 to 3) will do to the thumbnail that is shown of it
// now: clockwise quarter turns, 0 to 3.
//
// The update begins again at the original. What the album's sizes were turned before is given up, and where the camera
// noted how it was held, that alone counts. How the thumbnail lies now is found by comparing it with the original; 0,
// after a report, when that can't be read.
[[nodiscard]] unsigned long planned_turn(const std::string& album, const std::string& name, unsigned long count);

}  // namespace taloram
