#pragma once

#include "link/clock.h"

namespace kavro {

/// The machine's monotonic clock.
class SteadyClock : public Clock {
public:
    std::int64_t Microseconds() const override;
    void SleepUntil(std::int64_t moment) override;
    std::int64_t UtcMicroseconds() const override;
};

} // namespace kavro
