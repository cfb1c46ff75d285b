#pragma once

#include <cstdint>

namespace kavro {

/// Time as the link sees it. The program runs on the steady clock, tests on a virtual one.
class Clock {
public:
    virtual ~Clock() = default;

    /// Microseconds since some fixed moment; never goes back.
    virtual std::int64_t Microseconds() const = 0;

    /// Blocks until `Microseconds()` has reached `moment`; returns at once when it lies in the past.
    virtual void SleepUntil(std::int64_t moment) = 0;

    /// The time of day: microseconds since 1970, UTC. Goes back when the clock is set.
    virtual std::int64_t UtcMicroseconds() const = 0;

    /// Blocks for that many milliseconds; zero and less return at once.
    void Sleep(int milliseconds) { SleepUntil(Microseconds() + std::int64_t{1000} * milliseconds); }

    /// Millisecond counter.
    std::int64_t GetTickCount() const { return Microseconds() / 1000; }
};

} // namespace kavro
