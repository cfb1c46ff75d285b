#include "monitor/axis_ticks.h"

#include <algorithm>
#include <cmath>

namespace kavro {

namespace {

constexpr double SmallestStep = 1e-4;  // no reading has more decimals
constexpr double SmallestShare = 1e-3; // step of the largest value, so that a steady line looks steady

double RoundStep(double atLeast, bool powersOfTwo) {
    if (powersOfTwo)
        return std::exp2(std::max(std::ceil(std::log2(atLeast)), 0.0)); // whole numbers only
    const double power = std::pow(10, std::floor(std::log10(atLeast)));
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * power >= atLeast * (1 - 1e-9))
            return factor * power;
    return 10 * power;
}

} // namespace

AxisTicks RoundTicks(double low, double high, int mostSteps, bool powersOfTwo) {
    mostSteps = std::max(mostSteps, 2);
    const double largest = std::max(std::fabs(low), std::fabs(high));
    const double least = powersOfTwo ? 1 : std::max(SmallestStep, SmallestShare * largest);
    double step = RoundStep(std::max((high - low) / mostSteps, least), powersOfTwo);
    if (high - low < least / 2) {
        low -= step;
        high += step;
    }
    AxisTicks axis;
    const auto snap = [&] {
        axis.Low = std::floor(low / step + 1e-9);
        axis.High = std::max(std::ceil(high / step - 1e-9), axis.Low + 1);
    };
    snap();
    while (axis.High - axis.Low > mostSteps) { // the ends fell between two steps
        step = RoundStep(step * 1.5, powersOfTwo);
        snap();
    }
    for (int mark = 0; mark <= static_cast<int>(axis.High - axis.Low); ++mark)
        axis.Marks.push_back((axis.Low + mark) * step);
    axis.Low *= step;
    axis.High *= step;
    axis.Decimals = std::max(0, static_cast<int>(-std::floor(std::log10(step) + 1e-9)));
    return axis;
}

} // namespace kavro
