#include "link/runtime_failure.h"
#include "sim/module_factory.h"
#include "sim/simulated_port.h"
#include "sim/virtual_clock.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kavro {
namespace {

constexpr const char* Question = "$012\r";
constexpr const char* Answer = "!01080600\r";

/// A port on a line with one 8250 at address 1, 9600 baud, on a virtual clock.
class SimulatedPortTest : public testing::Test {
protected:
    SimulatedPortTest() {
        Line.Add(MakeModule("8250", 1));
        Port.PortOpen(true);
    }

    /// Everything that comes within `milliseconds` of silence.
    std::string Receive(int milliseconds = 100) {
        std::string text;
        while (Port.WaitForInput(milliseconds))
            text += Port.Input();
        return text;
    }

    std::string Exchange(const std::string& text) {
        Port.Output(text);
        return Receive();
    }

    VirtualClock Time;
    SimulatedLine Line;
    SimulatedPort Port{Line, Time};
};

TEST_F(SimulatedPortTest, CharactersTakeTheirTime) {
    // 5 characters out, 2 ms to turn around, 10 characters back, 10 bits each.
    for (const auto& [settings, first, last] :
         {std::tuple{"1200,n,8,1", 51'999, 126'999}, std::tuple{"115200,n,8,1", 2'520, 3'302}}) {
        Line.Modules().front()->Settings.Baud = std::stoi(settings);
        Port.Settings(settings);
        const std::int64_t start = Time.Microseconds();
        Port.Output(Question);
        EXPECT_EQ(Port.InBufferCount(), 0);
        ASSERT_TRUE(Port.WaitForInput(100));
        EXPECT_EQ(Time.Microseconds() - start, first);
        EXPECT_EQ(Port.InBufferCount(), 1);
        Time.SleepUntil(start + last - 1);
        EXPECT_EQ(Port.InBufferCount(), 9);
        Time.SleepUntil(start + last);
        EXPECT_EQ(Port.InBufferCount(), 10);
        Port.EmptyInBuffer();
    }
}

TEST_F(SimulatedPortTest, WaitingInVainCostsExactlyTheLimit) {
    Port.Output("$022\r");
    EXPECT_FALSE(Port.WaitForInput(250));
    EXPECT_EQ(Time.Microseconds(), 250'000);
    EXPECT_FALSE(Port.WaitForInput(-5));
    EXPECT_EQ(Time.Microseconds(), 250'000);
}

TEST_F(SimulatedPortTest, CommandsMayComeInPiecesOrTogether) {
    Port.Output("$0");
    EXPECT_EQ(Receive(), "");
    EXPECT_EQ(Exchange("12\r"), Answer);
    EXPECT_EQ(Exchange("$012\r$022\r$01M\r"), std::string(Answer) + "!018250\r");
    EXPECT_EQ(Exchange(std::string(100'000, 'x') + "\r"), "") << "an endless line is nobody's command";
}

TEST_F(SimulatedPortTest, EmptyingTheBufferKeepsALateReply) {
    Line.LineFaults.DelayMs = 500;
    EXPECT_EQ(Exchange(Question), "");
    Port.EmptyInBuffer();
    EXPECT_EQ(Receive(1000), Answer);
    Port.Output(Question);
    Time.Sleep(1000);
    Port.EmptyInBuffer();
    EXPECT_EQ(Receive(), "");
}

TEST_F(SimulatedPortTest, FaultsOfModuleAndLine) {
    const struct {
        Faults Fault;
        int MoreMs = 0; // than without the fault
        const char* Reply = "";
    } cases[] = {
        {{.Silent = true}, -17, ""},
        {{.DelayMs = 50}, 50, Answer},
        {{.WrongChecksum = true}, 0, Answer}, // this module has no checksum that could be wrong
        {{.NoCarriageReturn = true}, -1, "!01080600"},
        {{.SlowCharacterMs = 20}, 9 * 20, Answer},
        {{.Refuse = true}, -6, "?01\r"},
        {{.Silent = true, .DelayMs = 50}, -17, ""},
    };
    for (Faults* place : {&Line.LineFaults, &Line.Modules().front()->OwnFaults})
        for (const auto& [fault, moreMs, reply] : cases) {
            *place = fault;
            const std::int64_t start = Time.Microseconds();
            EXPECT_EQ(Exchange(Question), reply);
            EXPECT_NEAR(static_cast<double>(Time.Microseconds() - start) / 1000, 117.6 + moreMs, 1.1);
            *place = {};
        }
    Line.LineFaults.DelayMs = Line.Modules().front()->OwnFaults.DelayMs = 60;
    EXPECT_EQ(Exchange(Question), "") << "delays add up";
}

TEST_F(SimulatedPortTest, NoiseDependsOnTheSeedAlone) {
    Line.LineFaults.Noise = true;
    const auto twentyReplies = [this](std::uint32_t seed) {
        Line.SetSeed(seed);
        std::vector<std::string> replies(20);
        for (std::string& reply : replies)
            reply = Exchange(Question);
        return replies;
    };
    const auto first = twentyReplies(7);
    EXPECT_EQ(first, twentyReplies(7));
    EXPECT_NE(first, twentyReplies(8));
    const auto complete =
        std::ranges::count_if(first, [](const auto& reply) { return reply.ends_with(Answer); });
    EXPECT_GT(complete, 10);
    EXPECT_LT(complete, 20) << "now and then noise comes instead of a reply";
    EXPECT_EQ(std::ranges::count(first, Answer), 0);
}

TEST_F(SimulatedPortTest, ModulesAtOneAddressTalkIntoEachOther) {
    Line.Add(MakeModule("8310", 1));
    EXPECT_EQ(Exchange("$01M\r"), "!!001188235100\r\r");
}

TEST_F(SimulatedPortTest, TheLogHearsEveryCommand) {
    std::vector<LineEvent> events;
    Line.Log = [&events](const LineEvent& event) { events.push_back(event); };
    Exchange(Question);
    Port.SetCommState("38400,n,8,1");
    Exchange(Question);
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].Command + " " + events[0].Reply, std::string("$012 ") + Answer);
    EXPECT_EQ(events[1].Baud, 38400);
    EXPECT_EQ(events[1].Reply, "");
}

TEST_F(SimulatedPortTest, AnUnpluggedLineIsToldOnce) {
    const auto failure = [this](auto operation) {
        try {
            operation(Port);
        } catch (const RuntimeFailure& caught) {
            return std::string(caught.what());
        }
        return std::string("none");
    };
    const auto wait = [](SimulatedPort& port) { port.WaitForInput(100); };
    const auto open = [](SimulatedPort& port) { port.PortOpen(true); };
    Port.Output(Question);
    Line.Unplug();
    EXPECT_TRUE(failure(wait).starts_with("The simulated line is unplugged."));
    EXPECT_FALSE(Port.PortOpen());
    EXPECT_TRUE(failure(wait).starts_with("The port is not open."));
    EXPECT_TRUE(failure(open).starts_with("The simulated line is unplugged."));
    Line.Plug();
    EXPECT_EQ(failure(open), "none");
    EXPECT_EQ(Receive(), "") << "nothing of before is left";
    EXPECT_EQ(Exchange(Question), Answer);

    Line.Unplug();
    Line.Plug();
    EXPECT_TRUE(failure(wait).starts_with("The simulated line is unplugged.")) << "it was gone meanwhile";
}

TEST_F(SimulatedPortTest, BadUseIsAFailure) {
    for (const char* settings : {"", "n,8,1", "0,n,8,1", "-9600,n,8,1", "96x0,n,8,1", "99999999999,n,8,1"})
        EXPECT_THROW(Port.Settings(settings), RuntimeFailure) << settings;
    EXPECT_THROW(Port.Input(), RuntimeFailure);
    Port.PortOpen(false);
    EXPECT_THROW(Port.Output(Question), RuntimeFailure);
    EXPECT_THROW(Port.Settings("9600,n,8,1"), RuntimeFailure);
    EXPECT_THROW(Port.EmptyInBuffer(), RuntimeFailure);
}

} // namespace
} // namespace kavro
