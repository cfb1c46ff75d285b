#include "sim/replayed_line.h"

#include "map/search.h"
#include "support/test_session.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

struct Recorded : LineListener {
    void Passed(const LineTraffic& traffic) override { Traffic.push_back(traffic); }
    std::vector<LineTraffic> Traffic;
};

// All that the traffic tells but the time of day.
std::string Shown(const std::vector<LineTraffic>& traffic) {
    std::string text;
    for (const LineTraffic& each : traffic)
        text += std::to_string(each.Baud) + " " + each.Sent + each.Received + std::to_string(each.FirstUs) +
                " " + std::to_string(each.LastUs) + " " + std::to_string(static_cast<int>(each.Outcome)) +
                "\n";
    return text;
}

// A search and some readings of a line, as the listener is told of them.
std::vector<LineTraffic> Told(Session& session) {
    Recorded listener;
    session.Line.Listeners.push_back(&listener);
    EnableBaudCodes(session, {3, 4});
    session.SearchHighAddress = 24;
    NetworkSearch(session, {}).Run();
    for (int i = 0; i < 20; ++i)
        session.Line.Exchange("#050", 0, 3, 100);
    session.Line.Listeners.clear();
    return listener.Traffic;
}

// A line of a recording, behind a port.
struct Replay {
    explicit Replay(const std::vector<LineTraffic>& traffic, bool delays = true) : Line(traffic, delays) {
        Line.NotRecorded = [this] { ++Unknown; };
        Port.PortOpen(true);
    }

    VirtualClock Time;
    ReplayedLine Line;
    SimulatedPort Port{Line, Time};
    int Unknown = 0;
};

struct ReplaySession : TestSession {
    explicit ReplaySession(const std::vector<LineTraffic>& traffic)
        : TestSession([this](int) { return std::make_unique<SimulatedPort>(Line, Time); }), Line(traffic) {
        Line.NotRecorded = [this] { ++Unknown; };
        Session.Line.CommPort(1).PortOpen(true);
    }
    ReplayedLine Line;
    int Unknown = 0;
};

// Echo, damages and slow characters: what came then comes again, at the same times.
TEST(ReplayedLine, IsTheLineThatWasRecorded) {
    SimulatedSession first(DemoLine());
    first.Line.LineFaults.Echo = true;
    first.Line.LineFaults.DamageShare = 0.1;
    first.Line.LineFaults.SlowCharacterMs = 1;
    std::vector<LineTraffic> recorded = Told(first.Session);
    ReplaySession second(recorded);
    // Characters that nobody asked for are not played.
    std::erase_if(recorded, [](const LineTraffic& each) { return each.Outcome == TrafficOutcome::Stray; });
    EXPECT_EQ(Shown(Told(second.Session)), Shown(recorded));
    EXPECT_EQ(second.Session.Device, first.Session.Device);
    EXPECT_EQ(second.Unknown, 0);
    EXPECT_GT(second.Session.Device.size(), 10u);
}

TEST(ReplayedLine, GivesTheLastReplyForEverAndNoneToWhatWasNeverAsked) {
    const LineTraffic one = {
        .Baud = 9600, .Sent = "#01\r", .Received = ">1\r", .FirstUs = 5000, .LastUs = 9000};
    LineTraffic two = one, stray = one, silent = one;
    two.Received = ">2\r";
    stray.Outcome = TrafficOutcome::Stray;
    silent.Sent = "#02\r";
    silent.Received.clear();
    for (const bool delays : {true, false}) {
        Replay replay({one, stray, two, silent}, delays);
        std::string heard;
        for (const char* command : {"#01\r", "#01\r", "#01\r", "#02\r", "#03\r"}) {
            const std::int64_t start = replay.Time.Microseconds();
            replay.Port.Output(command);
            while (replay.Port.WaitForInput(50))
                heard += replay.Port.Input() + std::to_string(replay.Time.Microseconds() - start) + " ";
        }
        const std::string times = delays ? ">5000 19000 \r9000 >5000 29000 \r9000 >5000 29000 \r9000 "
                                         : ">0 10 \r0 >0 20 \r0 >0 20 \r0 ";
        EXPECT_EQ(heard, times);
        replay.Port.Settings("19200,n,8,1");
        replay.Port.Output("#01\r#01\r");
        EXPECT_FALSE(replay.Port.WaitForInput(50));
        EXPECT_EQ(replay.Unknown, 3);
    }
}

} // namespace
} // namespace kavro
