#include "monitor/monitor.h"

#include "sim/module_factory.h"
#include "support/test_session.h"

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
