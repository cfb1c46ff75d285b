#pragma once

#include <string>
#include <vector>

namespace kavro {

/// Where the ticks of a scaled axis stand, and what they say.
struct AxisTicks {
    double Low = 0; ///< both ends of the axis; each carries a tick
    double High = 1;
    std::vector<double> Marks; ///< evenly spaced, from `Low` to `High`
    int Decimals = 0;          ///< of the marks' texts
};

/// An axis that covers `low` to `high` by round steps (1, 2 or 5 times a power of ten, or a power of two when
/// `powersOfTwo`), with at most `mostSteps` steps. Equal ends get room on either side.
AxisTicks RoundTicks(double low, double high, int mostSteps, bool powersOfTwo = false);

} // namespace kavro
