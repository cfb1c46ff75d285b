#include "diag/axis_ticks.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

TEST(AxisTicks, RoundStepsThatCoverTheValues) {
    const struct {
        double Low, High;
        int MostSteps;
        bool PowersOfTwo;
        double First, Last;
        std::size_t Marks;
        int Decimals;
    } cases[] = {
        {-9.3, 9.1, 4, false, -10, 10, 5, 0}, {0.95, 1.05, 5, false, 0.95, 1.05, 3, 2},
        {4, 4, 4, false, 3.995, 4.005, 3, 3}, {0, 4294967295.0, 5, false, 0, 5e9, 6, 0},
        {0, 255, 4, true, 0, 256, 5, 0},      {60, 60, 8, true, 59, 61, 3, 0},
        {-1, 1, 0, false, -1, 1, 3, 0},
    };
    for (const auto& [low, high, mostSteps, powersOfTwo, first, last, marks, decimals] : cases) {
        SCOPED_TRACE(high);
        const AxisTicks axis = RoundTicks(low, high, mostSteps, powersOfTwo);
        EXPECT_NEAR(axis.Low, first, 1e-9);
        EXPECT_NEAR(axis.High, last, 1e-9);
        EXPECT_EQ(axis.Marks.size(), marks);
        EXPECT_EQ(axis.Decimals, decimals);
    }
}

} // namespace
} // namespace kavro
