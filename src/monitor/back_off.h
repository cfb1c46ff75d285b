#pragma once

#include <algorithm>
#include <cstdint>

namespace kavro {

inline constexpr std::int64_t FirstBackOffMs = 1000;
inline constexpr std::int64_t LongestBackOffMs = 60'000;

/// When something that fails is tried again: 1, 2, 4 ... 32 s after a failure, then every 60 s. Moments are
/// those of the line's clock, in ms.
class BackOff {
public:
    void Failed(std::int64_t now) {
        delay_ = std::clamp(2 * delay_, FirstBackOffMs, LongestBackOffMs);
        dueAt_ = now + delay_;
    }
    void Succeeded() { *this = {}; }

    /// Until it is due; 0: now, as always before a failure.
    std::int64_t DueInMs(std::int64_t now) const {
        return delay_ == 0 ? 0 : std::max<std::int64_t>(dueAt_ - now, 0);
    }

private:
    std::int64_t delay_ = 0; // 0: nothing has failed
    std::int64_t dueAt_ = 0;
};

} // namespace kavro
