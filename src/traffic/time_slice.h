#pragma once

#include <chrono>

namespace kavro {

/// A short time for long work between two turns of the event loop.
class TimeSlice {
public:
    explicit TimeSlice(int milliseconds)
        : end_(std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds)) {}

    /// To be asked once a step; looks at the clock now and then only, as that costs more than a step may.
    bool Over() { return ++steps_ % StepsALook == 0 && std::chrono::steady_clock::now() >= end_; }

private:
    static constexpr int StepsALook = 32;

    std::chrono::steady_clock::time_point end_;
    int steps_ = 0;
};

} // namespace kavro
