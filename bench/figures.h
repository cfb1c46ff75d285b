#pragma once

#include <algorithm>
#include <ctime>
#include <vector>

namespace kavro {

/// Middle value; the higher of the two middle ones of an even number. At least one value must be there.
inline double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Seconds of a POSIX clock.
inline double Seconds(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

} // namespace kavro
