#include "monitor/trend.h"

#include "monitor/axis_ticks.h"
#include "monitor/time_marks.h"
#include "support/test_session.h"

namespace kavro {
namespace {

TEST(Trend, TenMinutesOfEachValueWithBreaks) {
    Trend trend;
    const auto value = [](double number) { return std::vector<ChannelValue>{{"0", "1", number, "V"}}; };
    for (int turn = 0; turn < 24 * 60 * 120; ++turn)
        trend.Add(turn * 500, 0, value(turn));
    constexpr std::int64_t last = (24 * 60 * 120 - 1) * 500;
    EXPECT_EQ(trend.Points(0, 0, last).size(), 1201U) << "ten minutes, two turns a second";
    EXPECT_EQ(trend.Points(0, 0, last).back().AtMs, last) << "the newest stays";
    trend.AddBreak(last + 1);
    EXPECT_FALSE(trend.Points(0, 0, last).back().Value) << "the line is broken";
}

TEST(TimeMarks, RoundMinutesWithTheDateWhereADayBegins) {
    const auto written = [](const std::vector<TimeMark>& marks) {
        std::string text;
        for (const TimeMark& mark : marks)
            text += std::to_string(mark.AgeMs / 1000) + "=" + mark.Text + (mark.Date.empty() ? "" : " ") +
                    mark.Date + "; ";
        return text;
    };
    EXPECT_EQ(written(MarksBeforeNow(600'000, 5)), "600=-10 min; 300=-5 min; 0=now; ");
    const std::tuple<int, WallTime, const char*> cases[] = {
        {5, {300'000, 0}, "600=23:55 1969-12-31; 300=00:00 1970-01-01; 0=00:05; "},
        {5, {299'000, 60}, "599=00:55 1970-01-01; 299=01:00; "},
        {2,
         {951'782'405'000, -571}, // 14:29:05
         "545=14:20 2000-02-28; 425=14:22; 305=14:24; 185=14:26; 65=14:28; "}};
    for (const auto& [step, now, marks] : cases)
        EXPECT_EQ(written(ClockMarks(600'000, step, now)), marks);
}

TEST(AxisTicks, RoundStepsThatCoverTheValues) {
    const std::tuple<double, double, int, bool, double, double, std::size_t, int> cases[] = {
        {-9.3, 9.1, 4, false, -10, 10, 5, 0}, {0.95, 1.05, 5, false, 0.95, 1.05, 3, 2},
        {4, 4, 4, false, 3.995, 4.005, 3, 3}, {0, 4294967295.0, 5, false, 0, 5e9, 6, 0},
        {0, 255, 4, true, 0, 256, 5, 0},      {60, 60, 8, true, 59, 61, 3, 0},
        {-1, 1, 0, false, -1, 1, 3, 0}};
    for (const auto& [low, high, mostSteps, powersOfTwo, first, last, marks, decimals] : cases) {
        const AxisTicks axis = RoundTicks(low, high, mostSteps, powersOfTwo);
        EXPECT_NEAR(axis.Low, first, 1e-9);
        EXPECT_NEAR(axis.High, last, 1e-9);
        EXPECT_EQ(std::pair(axis.Marks.size(), axis.Decimals), std::pair(marks, decimals)) << high;
    }
}

} // namespace
} // namespace kavro
