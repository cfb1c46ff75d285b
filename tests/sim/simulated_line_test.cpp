#include "sim/played.h"

#include "sim/readings.h"
#include "sim/simulated_port.h"
#include "sim/virtual_clock.h"
#include "support/failure_text.h"

namespace kavro {
namespace {

TEST(SimulatedModule, AnswersEachCommandOfItsFamily) {
    ExpectPlayed(
        {{"8250",
          "$052 !05080600,$05M !058250,$05F !05A1.0,$056 !05FF,#050 >-03.157,#058 ?05,#05 ?05,$059 ?05,"
          "@05RL ?05,$05 ?05,$052\n ?05,$062 (silence),$0 (silence), (silence),!052 (silence)"},
         {"8230", "$056 !0507,#053 ?05"},
         {"8210", "#05 >-0.7893,@05RL !05-2.0000,@05RH !05+2.0000,@05DI !0500001,$053 >+0025.3"},
         {"8220", "@05RL !05-16.000"},
         {"8240", "$053 !05+0123,$055 !0505"},
         {"8310", "$052 !05300600,~05CR ?05"},
         {"8320", "~05CR !0500"},
         {"8490", "$052 !05400600,~05CR !0500"},
         {"8510", "$052 !05500600,$05B !050,$05A !052,$055 !0500,$053 !05FFFFFFFF,@05G !05FFFFFFFF,$054 !050,"
                  "$050H !050010,$050L !050010,$051H !0524,$051L !0508,@05DI !050000,"
                  "@05RP !050000000000000000,@05RA !05FFFFFFFFFFFFFFFF"},
         {"8610", "$052 !0500668003"},
         {"8999", "$052 !05000600,$05M !058999,#05 ?05"}});
}

TEST(SimulatedModule, HearsItsOwnBaudRateOnly) {
    EXPECT_THROW(MakeModule("8250", 1, 14400), RuntimeFailure);
    const std::pair<int, const char*> codes[] = {{1200, "03"},  {2400, "04"},  {4800, "05"},   {9600, "06"},
                                                 {19200, "07"}, {38400, "08"}, {115200, "09"}, {57600, "0A"}};
    for (const auto& [baud, code] : codes)
        for (const auto& [spoken, unused] : codes)
            EXPECT_EQ(Reply(*MakeModule("8250", 1, baud), "$012", spoken),
                      spoken == baud ? std::string("!0108") + code + "00" : Silence);
}

TEST(SimulatedModule, HearsAndSendsOnlyGoodChecksums) {
    const auto module = MakeModule("8250", 1, 9600, true);
    EXPECT_EQ(Reply(*module, "$012B7"), "!01080640B4");
    for (const char* line : {"$012", "$012B8", "$012b7", "$012B7B7", "", "7"})
        EXPECT_EQ(Reply(*module, line), Silence) << line;
    EXPECT_EQ(module->Hear("$012B7", 9600, 0, {.WrongChecksum = true}), "!01080640B5");
}

TEST(Readings, AreWrittenInTheirRangeAndFormat) {
    const std::tuple<double, int, int, const char*> cases[] = {
        {5.1234, 0x08, 0, "+05.123"}, {-0.5, 0x08, 0, "-00.500"},  {1.25, 0x05, 0, "+1.2500"},
        {12.34, 0x0F, 0, "+0012.3"},  {-99.5, 0x20, 0, "-099.50"}, {7, 0x50, 0, "+00007"},
        {-5, 0x08, 1, "-050.00"},     {10, 0x08, 2, "7FFF"},       {-10, 0x08, 2, "8001"},
        {100, 0x20, 3, "+138.50"},    {42, 0x2A, 3, "+042.00"}};
    for (const auto& [value, code, format, text] : cases)
        EXPECT_EQ(ReadingText(value, ShapeOf(code), format), text);
}

constexpr const char* Question = "$012\r";
constexpr const char* Answer = "!01080600\r";

/// A port on a line with one 8250 at address 1, 9600 baud, on a virtual clock.
class SimulatedPortTest : public testing::Test {
protected:
    SimulatedPortTest() { Port.PortOpen(true); }

    /// Everything that comes before `milliseconds` of silence.
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
    SimulatedModule& Module = Line.Add(MakeModule("8250", 1));
    SimulatedPort Port{Line, Time};
};

TEST_F(SimulatedPortTest, CharactersTakeTheirTime) {
    // 5 characters out, 2 ms to turn around, 10 characters back, 10 bits each.
    for (const auto& [settings, first, last] :
         {std::tuple{"1200,n,8,1", 51'999, 126'999}, std::tuple{"115200,n,8,1", 2'520, 3'302}}) {
        Module.Settings.Baud = std::stoi(settings);
        Port.Settings(settings);
        const std::int64_t start = Time.Microseconds();
        Port.Output(Question);
        ASSERT_TRUE(Port.WaitForInput(100));
        EXPECT_EQ(Time.Microseconds() - start, first);
        EXPECT_EQ(Port.InBufferCount(), 1);
        Time.SleepUntil(start + last - 1);
        EXPECT_EQ(Port.InBufferCount(), 9);
        EXPECT_EQ(Receive().size(), 10U);
        EXPECT_EQ(Time.Microseconds() - start, last + 100'000);
    }
}

TEST_F(SimulatedPortTest, CommandsMayComeInPiecesOrTogether) {
    EXPECT_EQ(Exchange("$0"), "");
    EXPECT_EQ(Exchange("12\r"), Answer);
    EXPECT_EQ(Exchange("$022\r$032\r$012\r"), Answer);
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
    const std::tuple<Faults, int, const char*> cases[] = {
        {{.Silent = true}, -17, ""},
        {{.DelayMs = 50}, 50, Answer},
        {{.WrongChecksum = true}, 0, Answer}, // this module has no checksum that could be wrong
        {{.NoCarriageReturn = true}, -1, "!01080600"},
        {{.SlowCharacterMs = 20}, 9 * 20, Answer},
        {{.Refuse = true}, -6, "?01\r"},
        {{.Late = {.Share = 1, .MinMs = 30, .MaxMs = 30}}, 30, Answer},
        {{.Silent = true, .DelayMs = 50}, -17, ""}};
    for (Faults* place : {&Line.LineFaults, &Module.OwnFaults})
        for (const auto& [fault, moreMs, reply] : cases) {
            *place = fault;
            const std::int64_t start = Time.Microseconds();
            EXPECT_EQ(Exchange(Question), reply);
            EXPECT_NEAR(static_cast<double>(Time.Microseconds() - start) / 1000, 117.6 + moreMs, 1.1);
            *place = {};
        }
    Line.LineFaults.DelayMs = Module.OwnFaults.DelayMs = 60;
    EXPECT_EQ(Exchange(Question), "") << "delays add up";
}

TEST_F(SimulatedPortTest, NoiseDependsOnTheSeedAlone) {
    Line.LineFaults.Noise = true;
    const auto noisy = [this](std::uint32_t seed) {
        Line.SetSeed(seed);
        std::string text;
        for (int i = 0; i < 20; ++i)
            text += Exchange(Question);
        return text;
    };
    EXPECT_EQ(noisy(7), noisy(7));
    EXPECT_NE(noisy(7), noisy(8));
    EXPECT_TRUE(Contains(noisy(7), Answer));
    EXPECT_LT(std::ranges::count(noisy(7), '\r'), 20) << "now and then noise comes instead of a reply";
}

TEST_F(SimulatedPortTest, WhatOverlapsOnTheWiresIsGarbled) {
    Module.CommandFaults = [](std::string_view command) {
        return Faults{.Late = {.Share = command == "$012" ? 1.0 : 0, .MinMs = 100, .MaxMs = 100}};
    };
    // When the next command begins; how the answer to it begins, which is garbled behind that; and whether
    // the late reply can be read.
    const std::tuple<int, const char*, bool> cases[] = {{60, "!018250\r", true},
                                                        {97, "!0", false},
                                                        {104, "", false},
                                                        {114, "", false},
                                                        {118, "!018250\r", false}};
    for (const auto& [begin, whole, late] : cases) {
        Port.Output(Question);
        Time.Sleep(begin); // the late reply is on the wires from 107.2 to 117.6 ms
        Port.EmptyInBuffer();
        const std::string text = Exchange("$01M\r");
        EXPECT_TRUE(text.starts_with(whole)) << begin;
        EXPECT_EQ(Contains(text, "!018250\r"), std::string(whole).ends_with('\r')) << begin;
        EXPECT_EQ(Contains(text, Answer), late) << begin;
    }
    Line.Add(MakeModule("8310", 1));
    const std::string both = Exchange("$01M\r");
    EXPECT_TRUE(both.starts_with("!018") && !Contains(both, "!018250\r") && !Contains(both, "!018310\r"))
        << "two at one address talk into each other";
}

TEST_F(SimulatedPortTest, AnAdapterWithALatencyHandsCharactersOverNowAndThen) {
    Line.LineFaults.LatencyMs = 16;
    Time.Sleep(1);
    Port.Output(Question);
    ASSERT_TRUE(Port.WaitForInput(100)); // 8.2 to 18.6 ms on the wires
    EXPECT_EQ(std::tuple(Time.GetTickCount(), Port.InBufferCount()), std::tuple(16, 7));
    EXPECT_EQ(Receive(), Answer);
    EXPECT_EQ(Time.GetTickCount(), 132);
}

TEST_F(SimulatedPortTest, AnAdapterThatEchoesAndAModuleThatBabbles) {
    Line.LineFaults.Echo = true;
    EXPECT_EQ(Exchange(Question), std::string(Question) + Answer);
    EXPECT_EQ(Exchange("$022\r"), "$022\r") << "nobody's command comes back too";
    Line.LineFaults = {.SlowCharacterMs = 90, .Babble = true};
    Port.Output(Question);
    for (int i = 0; i < 10'000; ++i) // a quarter of an hour
        ASSERT_TRUE(Port.WaitForInput(95) && Port.Input() != '\r');
    Line.LineFaults = {};
    EXPECT_EQ(Exchange(Question), Answer);
}

TEST_F(SimulatedPortTest, EveryDamageIsOneOfItsKinds) {
    Line.LineFaults.DamageShare = 1;
    const std::string whole = Answer;
    int lengths[3] = {};
    for (int i = 0; i < 1000; ++i) {
        const std::string text = Exchange(Question);
        EXPECT_NE(text, whole);
        const auto differs = std::ranges::mismatch(text, whole);
        const std::string rest(differs.in1, text.end()), wholeRest(differs.in2, whole.end());
        const bool doubled = text.size() == 11 && rest.substr(1) == wholeRest;
        const bool replaced = text.size() == 10 && rest.substr(1) == wholeRest.substr(1);
        EXPECT_TRUE(doubled || replaced || (text.size() < 10 && whole.ends_with(rest))) << text;
        ++lengths[doubled ? 0 : replaced ? 1 : 2];
    }
    for (const int count : lengths)
        EXPECT_GT(count, 200);
}

TEST_F(SimulatedPortTest, AnUnpluggedLineIsToldOnce) {
    const auto wait = [this] { Port.WaitForInput(100); };
    const auto open = [this] { Port.PortOpen(true); };
    Port.Output(Question);
    Line.Unplug();
    EXPECT_TRUE(Contains(FailureText(wait), "The simulated line is unplugged."));
    EXPECT_FALSE(Port.PortOpen());
    EXPECT_TRUE(Contains(FailureText(wait), "The port is not open."));
    EXPECT_TRUE(Contains(FailureText(open), "The simulated line is unplugged."));
    Line.Plug();
    open();
    EXPECT_EQ(Receive(), "") << "nothing of before is left";
    EXPECT_EQ(Exchange(Question), Answer);

    Line.Unplug();
    Line.Plug();
    EXPECT_TRUE(Contains(FailureText(wait), "The simulated line is unplugged.")) << "it was gone meanwhile";
}

} // namespace
} // namespace kavro
