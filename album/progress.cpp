#include "album/progress.h"

#include <chrono>
#include <thread>

namespace taloram {

bool progress_signals_t::goes_on() const {
    constexpr std::chrono::milliseconds pause{50};
    wish_t wanted = wish ? wish() : wish_t::go_on;
    while (wanted == wish_t::hold) {
        std::this_thread::sleep_for(pause);
        wanted = wish();
    }
    return wanted == wish_t::go_on;
}

libutils::goes_on_t lasting_goes_on(const progress_signals_t& progress, bool& stopped) {
    return [&progress, &stopped] {
        stopped = stopped || !progress.goes_on();
        return !stopped;
    };
}

}  // namespace taloram
