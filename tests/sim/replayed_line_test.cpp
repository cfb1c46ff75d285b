#include "sim/replayed_line.h"

#include "map/search.h"
#include "support/test_session.h"
#include "traffic/recording.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

struct Recorded : LineListener {
    void Passed(const LineTraffic& traffic) override { Traffic.push_back(traffic); }
    std::vector<LineTraffic> Traffic;
};

// A session whose ports lead to a recording; COM1 is open.
struct ReplaySession : TestSession {
    explicit ReplaySession(const std::vector<LineTraffic>& traffic, bool delays = true)
        : TestSession([this](int) { return std::make_unique<SimulatedPort>(Line, Time); }),
          Line(traffic, delays) {
        Line.NotRecorded = [this] { ++Unknown; };
        Session.Line.CommPort(1).PortOpen(true);
    }

    ReplayedLine Line;
    int Unknown = 0;
};

// Lines of a recording, but the time of day and characters that nobody asked for.
std::string Shown(const std::vector<LineTraffic>& traffic) {
    std::string text;
    for (LineTraffic each : traffic) {
        each.Utc = 0;
        text += each.Outcome == TrafficOutcome::Stray ? "" : RecordingLine(each, false);
    }
    return text;
}

// What the listener is told of a search and some readings.
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

// Echo, damages and slow characters: what came then comes again, at the same times.
TEST(ReplayedLine, IsTheLineThatWasRecorded) {
    SimulatedSession first(DemoLine());
    first.Line.LineFaults.Echo = true;
    first.Line.LineFaults.DamageShare = 0.1;
    first.Line.LineFaults.SlowCharacterMs = 1;
    const std::vector<LineTraffic> recorded = Told(first.Session);
    ReplaySession second(recorded);
    EXPECT_EQ(Shown(Told(second.Session)), Shown(recorded));
    EXPECT_EQ(second.Session.Device, first.Session.Device);
    EXPECT_EQ(std::pair(second.Unknown, second.Session.Device.size() > 10), std::pair(0, true));
}

TEST(ReplayedLine, GivesTheLastReplyForEverAndNoneToWhatWasNeverAsked) {
    LineTraffic one{.Baud = 9600, .Sent = "#01\r", .Received = ">1\r", .FirstUs = 5000, .LastUs = 9000};
    LineTraffic two = one, stray = one;
    two.Received = ">2\r";
    stray.Outcome = TrafficOutcome::Stray;
    for (const bool delays : {true, false}) {
        ReplaySession replay({one, stray, two}, delays);
        SerialPort& port = replay.Session.Line.CommPort(1);
        std::string heard;
        for (const char* command : {"#01\r", "#01\r", "#01\r", "#03\r"}) {
            const std::int64_t start = replay.Time.Microseconds();
            port.Output(command);
            while (port.WaitForInput(50)) // takes the rest of a line in one piece
                heard += port.Input() + std::to_string(replay.Time.Microseconds() - start) + " ";
        }
        EXPECT_EQ(heard, delays ? ">5000 19000 \r9000 >5000 29000 \r9000 >5000 29000 \r9000 "
                                : ">0 10 \r0 >0 20 \r0 >0 20 \r0 ");
        port.Settings("19200,n,8,1");
        port.Output("#01\r#01\r");
        EXPECT_EQ(std::pair(port.WaitForInput(50), replay.Unknown), std::pair(false, 3));
    }
}

} // namespace
} // namespace kavro
