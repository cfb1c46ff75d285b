#include "monitor/axis_ticks.h"
#include "monitor/csv_log.h"
#include "monitor/monitor.h"
#include "monitor/time_marks.h"
#include "sim/module_factory.h"
#include "support/test_session.h"
#include "terminal/test_folder.h"

#include <malloc.h>

namespace kavro {
namespace {

/// Modules on the simulated line, known without a search.
struct MonitorTest : testing::Test, SimulatedSession {
    MonitorTest() {
        Session.ScanIndex = -1;
        for (const char* model : {"8210", "8410", "8610"}) {
            const std::int16_t address = Session.ModuleCount++;
            Line.Add(MakeModule(model, address, 9600, false));
            Session.ModuleTable[address] = {
                .Address = address, .Model = model, .BaudCode = 3, .InputRange = 5};
        }
        Session.Line.SetPortBaud(1, 3, 0, 0, 0); // with its pause, before any time counts
    }

    // One turn at the pace of the timer.
    int Tick() {
        const std::int64_t due = Time.Microseconds() + std::int64_t{1000} * MonitorTickMs;
        const auto turn = Watch.Tick();
        Time.SleepUntil(due);
        return turn ? turn->Index : -1;
    }

    Monitor Watch{Session};
};

TEST_F(MonitorTest, RoundsStatesAndAges) {
    EXPECT_EQ(Watch.State(0), "waiting");
    EXPECT_EQ((std::vector{Tick(), Tick(), Tick()}), (std::vector{0, 1, 2}));
    EXPECT_EQ((Lines{Watch.State(0), Watch.State(1), Watch.State(2)}), (Lines{"ok", "ok", "no values"}));
    const std::string before = Watch.Values(0)[0].Value.Text;
    Line.ModuleAt(0).OwnFaults.Silent = true;
    Tick();
    EXPECT_EQ(Watch.State(0), "no reply");
    EXPECT_EQ(Watch.Values(0)[0].Value.Text, before) << "the last value stays";
    const auto age = Watch.AgeMs(0).value_or(0);
    EXPECT_NEAR(static_cast<double>(age), 4 * MonitorTickMs, 40);
    EXPECT_EQ(Tick(), 1) << "the others go on";
    EXPECT_EQ(Watch.AgeMs(0), age + MonitorTickMs);
    EXPECT_EQ(Watch.AgeMs(2), std::nullopt);

    Line.ModuleAt(0).OwnFaults = {.Refuse = true};
    EXPECT_EQ((std::vector{Tick(), Tick()}), (std::vector{2, 0}));
    EXPECT_EQ(Watch.State(0), "error");
    EXPECT_FALSE(Watch.TrendOf(0, 0).at(2).Value);
    Watch.LineLost();
    EXPECT_EQ(Watch.State(1), "line lost");
    EXPECT_FALSE(Watch.TrendOf(1, 0).back().Value) << "the line is broken";
    Session.ModuleCount = 0;
    EXPECT_EQ(Tick(), -1);
}

TEST_F(MonitorTest, APortThatFailsInATurnHasItRepeated) {
    Line.Add(MakeModule("8250", 9, 9600, false));
    Session.ModuleTable[0] = {.Address = 9, .Model = "8250", .BaudCode = 3, .InputRange = 8};
    EXPECT_FALSE(Watch.Step());
    Line.Unplug();
    EXPECT_NE(FailureText([&] { Watch.Step(); }), "");
    EXPECT_FALSE(Watch.InTurn());
    Line.Plug();
    Session.Line.CommPort(1).PortOpen(true);
    EXPECT_EQ(Tick(), 0);
    EXPECT_EQ(Watch.State(0), "ok");
}

TEST_F(MonitorTest, ADayInFlatMemory) {
    Session.ModuleCount = 1;
    const auto run = [this](int minutes) {
        for (int tick = 0; tick < minutes * 120; ++tick)
            Tick();
    };
    run(11);
    const auto used = mallinfo2().uordblks;
    run(24 * 60);
    EXPECT_LE(mallinfo2().uordblks, used + 4096);
    EXPECT_EQ(Watch.TrendOf(0, 0).size(), 1200U) << "ten minutes, two turns a second";
    EXPECT_GE(Watch.TrendOf(0, 0).back().AtMs, Time.GetTickCount() - MonitorTickMs) << "the newest stays";
}

TEST(CsvLog, ExactBytes) {
    EXPECT_EQ(IsoTime({951'782'400'001, -570}), "2000-02-28T14:30:00.001-09:30");
    ScriptedSession test;
    test.Session.ModuleTable[3] = {.Address = 255, .Model = "8\x01,\"  "};
    const std::vector<ChannelValue> values = {{"0", "-1.5000", -1.5, "V", ValueState::Ok},
                                              {"1", "", {}, "V", ValueState::Disabled},
                                              {"IN", "", {}, "hex", ValueState::NoReply}};
    const std::string lines = CsvLines(test.Session, 3, values, {1'928'275'506'789, 60});
    EXPECT_EQ(lines, "2031-02-08T01:05:06.789+01:00,255,\"8?,\"\"\",0,-1.5000,V,ok\n"
                     "2031-02-08T01:05:06.789+01:00,255,\"8?,\"\"\",IN,,hex,no reply\n");
    const TestFolder folder;
    folder.Write("log.csv", std::string(1000, 'x'));
    CsvLog log(OpenAppendFile);
    log.Open(folder.Path("log.csv"));
    log.Write(lines);
    EXPECT_EQ(folder.Read("log.csv"), CsvHeader + lines) << "while the file is still open";
    for (const auto& [path, failure] : {std::pair{folder.Path("none/log.csv"), "cannot be opened: No such"},
                                        {"/dev/full", "cannot be written: No space left on device"}}) {
        EXPECT_TRUE(Contains(FailureText([&] { log.Open(path); }), failure));
        EXPECT_FALSE(log.IsOpen());
    }
}

TEST(CsvLog, TagsAreTheLastColumnWhileALineFileIsOpen) {
    ScriptedSession test;
    Select(test.Session, {.Model = "8320  "});
    const std::vector<ChannelValue> values = {{"B", "1.000", 1, "V", ValueState::Ok},
                                              {"C", "2.000", 2, "V", ValueState::Ok},
                                              {"IN", "7F", 127, WordUnit, ValueState::Ok}};
    test.Session.Tags.Modules[1] = {"8320", {"Valves", ""}, {{1, {"a,b", ""}}, {3, {"other", ""}}}};
    EXPECT_EQ(CsvHeading(test.Session), CsvHeader);
    const auto lines = [&] { return CsvHeading(test.Session) + CsvLines(test.Session, 0, values, {}); };
    EXPECT_FALSE(Contains(lines(), "Valves"));
    test.Session.Tags.Path = "line.kavro.json";
    const std::string row = "1970-01-01T00:00:00.000+00:00,1,8320,";
    EXPECT_EQ(lines(), "time,address,model,channel,value,unit,state,tag\n" + row + "B,1.000,V,ok,\"a,b\"\n" +
                           row + "C,2.000,V,ok,Valves\n" + row + "IN,7F,hex,ok,Valves\n");
    test.Session.ModuleTable[0].Model = "8310  ";
    EXPECT_TRUE(lines().ends_with(",IN,7F,hex,ok,\n")) << "another model than that of the file";
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
