#include "support/test_session.h"
#include "traffic/listening.h"

namespace kavro {
namespace {

struct HeardTraffic : LineListener {
    void Passed(const LineTraffic& traffic) override { All.push_back(traffic); }
    std::vector<LineTraffic> All;
};

using Cut = std::tuple<std::string, std::string, TrafficOutcome>;

std::vector<Cut> Cuts(const std::vector<LineTraffic>& traffic) {
    std::vector<Cut> cuts;
    for (const LineTraffic& each : traffic)
        cuts.emplace_back(each.Sent, each.Received, each.Outcome);
    return cuts;
}

// A conversation in pieces: what came, and the milliseconds before it.
struct Piece {
    int AfterMs;
    const char* Characters;
};

TEST(WireCutter, TellsCommandsAndRepliesApart) {
    using enum TrafficOutcome;
    const std::pair<std::vector<Piece>, std::vector<Cut>> cases[] = {
        {{{0, "$012\r"}, {9, "!0108"}, {3, "0600\r"}}, {{"$012\r", "!01080600\r", Complete}}},
        {{{0, "$012\r!01080600\r$02"}, {5, "2\r"}},
         {{"$012\r", "!01080600\r", Complete}, {"$022\r", "", Silent}}},
        {{{0, "#01\r"}, {90, "#02\r"}, {9, ">+05.123\r"}},
         {{"#01\r", "", Silent}, {"#02\r", ">+05.123\r", Complete}}},
        {{{0, "0600\r"}, {9, "$012\r"}, {9, "!01"}, {300, "$022\r"}, {9, "?02\r"}},
         {{"", "0600\r", Stray}, {"$012\r", "!01", Incomplete}, {"$022\r", "?02\r", Complete}}},
        {{{0, "$012B7\r"}, {9, "!0108060084\r"}, {9, "$012B7\r"}, {9, "!01080600B0\r"}},
         {{"$012B7\r", "!0108060084\r", Damaged}, {"$012B7\r", "!01080600B0\r", Complete}}},
        {{{0, "$012\r"}, {9, "\x01\xFF!01\r"}, {9, "!01080600\r"}},
         {{"$012\r", "\x01\xFF!01\r", Damaged}, {"", "!01080600\r", Stray}}},
        {{{0, "$ZZ2\r"}, {9, "!01\r"}}, {{"", "$ZZ2\r", Stray}, {"", "!01\r", Stray}}},
        {{{0, "\r\r"}}, {{"", "\r", Stray}, {"", "\r", Stray}}},
    };
    for (const auto& [pieces, expected] : cases) {
        std::vector<LineTraffic> told;
        WireCutter cutter(1, [&](const LineTraffic& traffic) { told.push_back(traffic); });
        std::int64_t utc = 1'000'000;
        for (const auto& [afterMs, characters] : pieces)
            cutter.Take(characters, utc += 1000 * afterMs, 9600);
        cutter.End();
        EXPECT_EQ(Cuts(told), expected) << pieces.front().Characters;
    }
}

struct ListeningTest : testing::Test {
    ScriptedSession Test;
    HeardTraffic Traffic;
    std::vector<std::int32_t> Found;

    ListeningTest() { Test.Session.Line.Listeners.push_back(&Traffic); }

    // Another master asks each 100 ms at `baud`; heard at another rate it makes no sense.
    void Talk(Listening& listening, std::int32_t baud, int exchanges) {
        for (int i = 0; i < exchanges; ++i) {
            const bool right = listening.Baud() == baud;
            Test.Port().Receive({right ? "$012\r" : "\x80\x1C\r", 10});
            Test.Port().Receive({right ? "!01080600\r" : "\xE6\r\x98\xFE", 17});
            for (int step = 0; step < 3; ++step)
                listening.Listen(40);
        }
    }
};

TEST_F(ListeningTest, FindsTheRateAndSendsNothing) {
    for (const std::int32_t baud : {9600, 115200, 1200}) {
        Traffic.All.clear();
        Found.clear();
        Listening listening(Test.Session.Line, {}, [&](std::int32_t found) { Found.push_back(found); });
        Talk(listening, baud, 40);
        listening.End();
        EXPECT_EQ(Found, std::vector{baud});
        ASSERT_GE(Traffic.All.size(), 5U);
        for (const LineTraffic& traffic : Traffic.All)
            EXPECT_EQ(std::tuple(traffic.Sent, traffic.Baud), std::tuple("$012\r", baud));
    }
    EXPECT_EQ(Test.Port().LastOutput, "");
    EXPECT_EQ(Test.Session.Line.BaudChangePauseMs, 1000);
}

TEST_F(ListeningTest, APortThatFailsEndsIt) {
    Listening listening(Test.Session.Line, std::int16_t{4}, {});
    listening.Listen(50);
    EXPECT_EQ(listening.Baud(), 19200);
    Test.Port().PortOpen(false);
    EXPECT_THROW(listening.Listen(50), RuntimeFailure);
    Test.Port(1).PortOpen(true);
    Test.Port().FailSettings = true;
    EXPECT_THROW(Listening(Test.Session.Line, std::int16_t{5}, {}).Listen(50), RuntimeFailure);
}

} // namespace
} // namespace kavro
