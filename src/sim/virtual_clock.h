#pragma once

#include "link/clock.h"

#include <algorithm>
#include <cstdint>

namespace kavro {

/// A clock that stands still until somebody sleeps on it; sleeping costs no real time.
class VirtualClock : public Clock {
public:
    std::int64_t Microseconds() const override { return now_; }
    void SleepUntil(std::int64_t moment) override { now_ = std::max(now_, moment); }
    std::int64_t UtcMicroseconds() const override { return Begin + now_; }

private:
    static constexpr std::int64_t Begin = 1'772'460'309'000'000; // 2026-03-02T14:05:09Z
    std::int64_t now_ = 0;
};

} // namespace kavro
