#include "monitor/monitor.h"

#include "sim/module_factory.h"
#include "support/test_session.h"

#include <malloc.h>

#include <algorithm>

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

    // Turns as fast as the line allows, for that long: "0 1 2." with a point where a round ends.
    std::string Turns(std::int64_t milliseconds) {
        std::string turns;
        const std::int64_t end = Time.GetTickCount() + milliseconds;
        while (Time.GetTickCount() < end)
            if (const auto turn = Watch.Tick())
                turns += " " + std::to_string(turn->Index) + (turn->EndsRound ? "." : "");
            else
                Time.Sleep(static_cast<int>(std::min(Watch.DueInMs(), end - Time.GetTickCount())));
        return turns;
    }

    Monitor Watch{Session};
};

TEST_F(MonitorTest, AFailingModuleIsAskedLessAndLessUntilItAnswers) {
    Session.ModuleCount = 1;
    Faults& faults = Line.ModuleAt(0).OwnFaults;
    for (const Faults failing : {Faults{.Silent = true}, {.Refuse = true}, {.NoCarriageReturn = true}}) {
        faults = failing;
        for (const int seconds : {1, 2, 4, 8, 16, 32, 60, 60, 60}) {
            EXPECT_EQ(Watch.DueInMs(), 0);
            EXPECT_TRUE(Watch.Tick()->EndsRound);
            const std::int64_t commands = Session.Line.Statistics.Transactions;
            EXPECT_EQ(Watch.DueInMs(), 1000 * seconds);
            EXPECT_EQ(Turns(1000 * seconds - 1), "");
            EXPECT_EQ(Session.Line.Statistics.Transactions, commands);
            Time.Sleep(1);
        }
        faults = {};
        EXPECT_EQ(Watch.Tick()->Values[0].State, ValueState::Ok);
        EXPECT_EQ(Watch.DueInMs(), 0) << "back at full pace";
    }
    Line.Add(MakeModule("8250", 9, 9600, false));
    Session.ModuleTable[0] = {.Address = 9, .Model = "8250", .BaudCode = 3, .InputRange = 8};
    Line.ModuleAt(9).CommandFaults = [](std::string_view command) {
        return Faults{.Refuse = command.starts_with('#') && command != "#095"};
    };
    EXPECT_EQ(Watch.Tick()->Values[4].State, ValueState::Error);
    EXPECT_EQ(Watch.DueInMs(), 0) << "one value of eight came";
}

TEST_F(MonitorTest, ARoundIsATurnOfEveryModuleThatIsDue) {
    Session.ModuleTable[2] = Session.ModuleTable[1];
    Line.ModuleAt(0).OwnFaults.Silent = true;
    EXPECT_EQ(Turns(900).substr(0, 17), " 0 1 2. 1 2. 1 2.");
    EXPECT_NE(Turns(600).find(" 2. 0 1"), std::string::npos) << "a second later";
    Watch.LeaveOut({1});
    EXPECT_EQ((Lines{Watch.State(0), Watch.State(1)}), (Lines{"no reply", "not read"}));
    EXPECT_TRUE(Watch.Values(1).empty());
    EXPECT_EQ(Turns(500), "") << "both entries of that address";
    Watch.LeaveOut({0, 1});
    EXPECT_EQ(std::pair(Watch.DueInMs(), Watch.LostTurn().has_value()), std::pair(INT64_MAX, false));
    EXPECT_FALSE(Watch.Step());
    Watch.LeaveOut({});
    EXPECT_EQ(Watch.State(0), "waiting");
    EXPECT_EQ(Turns(600).substr(0, 15), " 2. 0 1 2. 1 2.") << "due at once";
}

TEST_F(MonitorTest, RoundsThatAskNothingDoNotSpin) {
    Line.Add(MakeModule("8250", 9, 9600, false));
    Line.ModuleAt(9).CommandFaults = [](std::string_view) { return Faults{}; };
    Session.ModuleTable[0] = {.Address = 9, .Model = "8250", .BaudCode = 3, .InputRange = 8};
    Session.ModuleTable[1] = Session.ModuleTable[2];
    Session.Line.Exchange("$09500", 0, 3, 100); // all its channels are switched off
    Session.ModuleCount = 2;
    Turns(200);
    EXPECT_EQ(Watch.State(0), "disabled");
    const std::string turns = Turns(1000);
    EXPECT_EQ(turns.substr(0, 10), " 0 1. 0 1.");
    EXPECT_EQ(std::ranges::count(turns, '.'), 10);
}

TEST_F(MonitorTest, ALostPortIsNoticedAndLeavesTheBackOffAsItWas) {
    Session.ModuleCount = 1;
    Line.ModuleAt(0).OwnFaults.Silent = true;
    Turns(7500);
    const std::int64_t due = Watch.DueInMs();
    ASSERT_GT(due, 2000);
    Line.Unplug();
    EXPECT_NE(FailureText([&] { Watch.Step(); }), "") << "while nothing is due";
    EXPECT_EQ(Watch.LostTurn()->Values[0].State, ValueState::Lost);
    Time.Sleep(1000);
    Line.Plug();
    Session.Line.CommPort(1).PortOpen(true);
    EXPECT_EQ(Turns(due - 1003), "");
    EXPECT_EQ(Turns(200), " 0.");
    EXPECT_NEAR(static_cast<double>(Watch.DueInMs()), 16'000, 200);
}

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
    Watch.LineLost();
    EXPECT_EQ(Watch.State(1), "line lost");
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
}

} // namespace
} // namespace kavro
