#include "link/clock.h"

#include <chrono>
#include <thread>

namespace kavro {

std::int64_t SteadyClock::Microseconds() const {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

void SteadyClock::SleepUntil(std::int64_t moment) {
    const auto left = moment - Microseconds();
    if (left > 0)
        std::this_thread::sleep_for(std::chrono::microseconds(left));
}

} // namespace kavro
