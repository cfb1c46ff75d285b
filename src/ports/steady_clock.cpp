#include "ports/steady_clock.h"

#include <chrono>
#include <thread>

#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace kavro {

namespace {

// Linux wakes a sleeping thread up to 50 microseconds late to save power, half a character at 115200 baud.
// While one of these lives, the thread is woken as soon as possible; it costs no processor time.
class PunctualWaking {
public:
#ifdef __linux__
    PunctualWaking() {
        prctl(PR_SET_TIMERSLACK, 1UL);
    }
    ~PunctualWaking() {
        prctl(PR_SET_TIMERSLACK, 0UL);
    } // the usual one
#else
    PunctualWaking() = default;
#endif
    PunctualWaking(const PunctualWaking&) = delete;
    PunctualWaking& operator=(const PunctualWaking&) = delete;
};

} // namespace

std::int64_t SteadyClock::Microseconds() const {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

std::int64_t SteadyClock::UtcMicroseconds() const {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

void SteadyClock::SleepUntil(std::int64_t moment) {
    const auto left = moment - Microseconds();
    if (left <= 0)
        return;
    [[maybe_unused]] const PunctualWaking punctual;
    std::this_thread::sleep_for(std::chrono::microseconds(left));
}

} // namespace kavro
