#include "traffic/traffic_log.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

TEST(TrafficLog, KeepsTheLastMillionRowsUnderTheirNumbers) {
    TrafficLog log;
    EXPECT_EQ(log.First(), log.End());
    const std::int64_t passed = TrafficLog::MostRows + 12'345;
    for (std::int64_t i = 0; i < passed; ++i)
        log.Passed({.Utc = i, .Port = 2, .Baud = 9600, .Sent = "$" + std::to_string(i), .Received = "!\r"});
    EXPECT_EQ(log.End(), passed);
    EXPECT_EQ(log.Dropped(), log.First());
    EXPECT_GE(log.End() - log.First(), TrafficLog::MostRows);
    EXPECT_LT(log.End() - log.First(), TrafficLog::MostRows + 1000);
    for (const std::int64_t number : {log.First(), log.First() + 1000, passed - 1}) {
        const TrafficRow row = log.Row(number);
        EXPECT_EQ(row.Utc, number);
        EXPECT_EQ(row.Sent, "$" + std::to_string(number));
        EXPECT_EQ(row.Received, "!\r");
    }
    log.Clear();
    EXPECT_EQ(log.First(), passed);
    log.Passed(
        {.Sent = {}, .Received = "late", .FirstUs = std::int64_t{1} << 40, .Outcome = TrafficOutcome::Stray});
    EXPECT_EQ(log.Row(passed).Received, "late");
    EXPECT_EQ(log.Row(passed).FirstUs, 2'147'483'647);
    EXPECT_EQ(log.Row(passed).LastUs, -1);
    EXPECT_EQ(log.Dropped(), 0);
}

// A line that babbles takes no more memory than a good one.
TEST(TrafficLog, BoundsTheTextsOfLongReplies) {
    TrafficLog log;
    const std::string babble(10'000, 'x');
    for (int i = 0; i < 20'000; ++i)
        log.Passed({.Sent = {}, .Received = babble, .Outcome = TrafficOutcome::Incomplete});
    const auto kept = static_cast<std::size_t>(log.End() - log.First()) * babble.size();
    EXPECT_LE(kept, TrafficLog::MostTextBytes + (std::size_t{1} << 20));
    EXPECT_GE(kept, TrafficLog::MostTextBytes - (std::size_t{1} << 20));
    EXPECT_EQ(log.Row(log.First()).Received, babble);
}

} // namespace
} // namespace kavro
