#include "monitor/trend.h"

#include "monitor/axis_ticks.h"
#include "monitor/time_marks.h"
#include "monitor/trend_merge.h"
#include "monitor/trend_window.h"
#include "support/test_session.h"

#include <random>

namespace kavro {
namespace {

constexpr std::int64_t Second = 1000, Minute = 60 * Second, Hour = 60 * Minute, Day = 24 * Hour;

std::vector<ChannelValue> Value(std::optional<double> number) {
    return {{"0", "1", number, "V"}};
}

std::string Written(const std::vector<TrendColumn>& columns) {
    std::string text;
    for (const TrendColumn& it : columns)
        text += std::to_string(it.AtMs) + " " + std::to_string(it.FirstMs) + "-" + std::to_string(it.LastMs) +
                ": " + FormatNumber(it.First, 1, 0) + FormatNumber(it.Least, 1, 0) +
                FormatNumber(it.Most, 1, 0) + FormatNumber(it.Last, 1, 0) + (it.Broken ? "/" : "") + "; ";
    return text;
}

TEST(Trend, AWeekWithEachSpikeInBoundedMemoryAndColumnsThatStay) {
    Trend trend;
    std::mt19937 random(1);
    std::map<std::int64_t, double> spikes;
    std::size_t full = 0;
    std::vector<TrendColumn> seen;
    for (std::int64_t at = 0; at < 9 * Day; at += Second) {
        const bool spike = random() % 20'000 == 0;
        if (spike)
            spikes[at] = 9 + static_cast<double>(at % 7);
        trend.Add(at, 0, Value(spike ? spikes[at] : 1.0));
        if (at == 8 * Day) {
            full = trend.Bytes();
            seen = trend.Columns(0, 0, at - 2 * Hour, at, Minute);
        } else if (at == 8 * Day + 3 * Hour) {
            seen.pop_back(); // which went on
            EXPECT_EQ(Written(trend.Columns(0, 0, seen.front().AtMs, seen.back().AtMs + 1, Minute)),
                      Written(seen));
        }
    }
    EXPECT_EQ(trend.Bytes(), full);
    EXPECT_LT(full, MostValues << 19U); // half a MiB a value
    const std::int64_t end = 9 * Day;
    for (const std::int64_t column : {Second, 2 * Second, 30 * Second, 5 * Minute, 7 * Minute, Hour}) {
        const auto columns = trend.Columns(0, 0, end - 7 * Day, end, column);
        EXPECT_LE(columns.front().AtMs, end - 7 * Day);
        for (auto spike = spikes.lower_bound(end - 7 * Day); spike != spikes.end(); ++spike) {
            const auto found = std::ranges::lower_bound(columns, spike->first, {}, &TrendColumn::LastMs);
            ASSERT_TRUE(found != columns.end() && found->FirstMs <= spike->first) << column;
            EXPECT_GE(found->Most, spike->second) << column;
        }
        for (std::size_t number = 1; number < columns.size(); ++number)
            ASSERT_GT(columns[number].FirstMs, columns[number - 1].LastMs) << "no reading twice, " << column;
    }
}

TEST(Trend, BreaksAndAClockSetBack) {
    Trend trend;
    const std::pair<std::int64_t, std::optional<double>> readings[] = {
        {60'100, 1},  {60'200, 3},  {60'300, 2}, {61'000, 4},
        {61'100, {}}, {61'200, {}}, {64'000, 5}, {70'000, 6}};
    for (const auto& [at, value] : readings)
        trend.Add(at, 0, Value(value));
    const auto columns = [&](std::int64_t width) {
        return Written(trend.Columns(0, 0, 60'000, 80'000, width));
    };
    EXPECT_EQ(columns(1000), "60000 60100-60300: 1132; 61000 61000-61000: 4444/; 64000 64000-64000: 5555; "
                             "70000 70000-70000: 6666; ");
    EXPECT_EQ(columns(10'000), "60000 60100-64000: 1155/; 70000 70000-70000: 6666; ");
    trend.Add(60'250, 1, Value(7)); // the clock was set back in between
    trend.AddBreak(60'400);
    trend.Add(60'500, 0, Value(8));
    EXPECT_EQ(columns(100), "60100 60100-60100: 1111; 60200 60200-60200: 3333/; 60500 60500-60500: 8888; ");
    trend.Add(100, 0, Value(9));
    EXPECT_EQ(Written(trend.Columns(0, 0, 0, Day, Hour)), "0 100-100: 9999; ") << "back beyond all";
    EXPECT_EQ(trend.Oldest(0, 0), 100);
    EXPECT_EQ(trend.Columns(2, 0, 0, Day, Hour).size() + trend.Columns(0, 1, 0, Day, Hour).size(), 0U);
}

TEST(Trend, EachReadingOnceAtTheSeamToAHistory) {
    const auto column = [](std::int64_t at, std::int64_t first, std::int64_t last, double value) {
        return TrendColumn{at, first, last, value, value, value, value, false};
    };
    const std::vector<TrendColumn> memory = {column(0, 1, 99, 1), column(100, 150, 190, 2),
                                             column(200, 200, 290, 3)};
    const KeptStretch kept{60, 150, 50, {column(50, 60, 90, 4), column(100, 100, 140, 5)}};
    EXPECT_EQ(Written(MergeColumns(memory, kept)),
              "0 1-59: 1111; 50 60-90: 4444; 100 100-190: 5252; 200 200-290: 3333; ");
    const std::string csv =
        TrendCsv({{"a, b", "V", {column(0, 0, 5, 1.5)}}, {"c", "", {column(1000, 0, 0, 1e9)}}});
    EXPECT_EQ(csv.substr(0, csv.find('\n')), "time,\"a, b least [V]\",\"a, b most [V]\",c least,c most");
    EXPECT_NE(csv.find(",1.5,1.5,,\n"), std::string::npos) << csv;
}

TEST(TrendMerge, LinesBreakWhereNobodyRead) {
    const std::pair<std::vector<std::int64_t>, std::vector<bool>> cases[] = {
        {{0, 1000, 2000, 12 * Minute, 12 * Minute + 1000}, {false, false, true, false, false}},
        {{0, Day, 2 * Day, 3 * Day}, {false, false, false, false}}, // an interval of a day
        {{0, 1000, 9 * Minute}, {false, false, false}},
        {{0, 2 * Minute, 4 * Minute, 19 * Minute}, {false, false, false, false}}};
    for (const auto& [moments, broken] : cases) {
        std::vector<TrendColumn> columns;
        for (const std::int64_t at : moments)
            columns.push_back({.AtMs = at, .FirstMs = at, .LastMs = at});
        BreakAtPauses(columns);
        for (std::size_t place = 0; place < columns.size(); ++place)
            EXPECT_EQ(columns[place].Broken, broken[place]) << moments.back() << " at " << place;
    }
    std::vector<TrendColumn> wide = {{.FirstMs = 0, .LastMs = Minute}, {.FirstMs = Hour, .LastMs = Hour}};
    BreakAtPauses(wide);
    EXPECT_TRUE(wide[0].Broken);
}

TEST(TrendWindow, FollowsUntilTheUserLooksBack) {
    TrendWindow window;
    const auto shown = [&] {
        return std::to_string(window.FromMs() / Second) + "-" + std::to_string(window.ToMs() / Second) +
               (window.Following() ? "" : " stays");
    };
    window.SetNow(10'000 * Second, 1000 * Second, false);
    const std::pair<std::function<void()>, const char*> steps[] = {
        {[&] { window.SetSpan(1000 * Second); }, "9000-10000"},
        {[&] { window.Zoom(0.5, 0.95); }, "9500-10000"},
        {[&] { window.Zoom(0.5, 0.2); }, "9550-9800 stays"},
        {[&] { window.SetNow(10'001 * Second, 1000 * Second, false); }, "9550-9800 stays"},
        {[&] { window.Pan(-1); }, "9300-9550 stays"},
        {[&] { window.ToOldest(); }, "1000-1250 stays"},
        {[&] { window.Pan(-1); }, "1000-1250 stays"},
        {[&] { window.Zoom(1e-9, 0.5); }, "1120-1130 stays"},
        {[&] { window.Pan(1e6); }, "9991-10001"},
        {[&] { window.ToWhole(); }, "1000-10001"},
        {[&] { window.Zoom(1e9, 0.5); }, "-594799-10001"}, // a week
        {[&] {
             window.SetNow(10'001 * Second, {}, true);
             window.ToNow();
             window.Pan(-1);
         },
         "-1199599--594799 stays"}};
    for (const auto& [step, expected] : steps) {
        step();
        EXPECT_EQ(shown(), expected);
    }
    EXPECT_EQ(RoundColumnMs(157'500), 5 * Minute);
}

// Central European time of 2026: an hour forward at 01:00 UTC of 29 March, back on 25 October.
WallTime Local(std::int64_t at) {
    const bool summer = at >= 1'774'746'000'000 && at < 1'792'890'000'000;
    return {at, summer ? 120 : 60};
}

TEST(TimeMarks, RoundLocalTimesWithTheDateWhereADayBegins) {
    const std::tuple<std::int64_t, std::int64_t, std::int64_t, const char*> cases[] = {
        {-30'500, 30'500, 20 * Second, "00:59:30 1970-01-01; 01:00:00; 01:00:30; "},
        {-Day, Day, 12 * Hour, "12:00 1969-12-31; 00:00 1970-01-01; 12:00; 00:00 1970-01-02; "},
        {1'774'742'400'000, 1'774'753'200'000, 40 * Minute, "01:00 2026-03-29; 03:00; 04:00; 05:00; "},
        {1'792'879'200'000, 1'792'900'800'000, 2 * Hour, "00:00 2026-10-25; 02:00; 04:00; "},
        {1'774'566'000'000, 1'774'914'000'000, Day,
         "00:00 2026-03-27; 00:00 2026-03-28; 00:00 2026-03-29; 00:00 2026-03-30; 00:00 2026-03-31; "}};
    for (const auto& [from, to, least, expected] : cases) {
        std::string text;
        for (const TimeMark& mark : TimeMarks(from, to, least, Local))
            text += mark.Text + (mark.Date.empty() ? "" : " ") + mark.Date + "; ";
        EXPECT_EQ(text, expected);
    }
    EXPECT_EQ(MomentText({1500, 0}, {Day, 0}, true), "1970-01-01 00:00:01.500");
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
