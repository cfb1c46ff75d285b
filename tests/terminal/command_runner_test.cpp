#include "terminal/command_runner.h"

#include "support/failure_text.h"
#include "support/test_session.h"
#include "terminal/batch_control.h"
#include "terminal/test_folder.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

using Exchanges = std::vector<std::pair<std::string, std::string>>;

// A runner on COM1 at 9600 baud, with the module 31 at 19200, that writes down what it does.
struct Console {
    Console()
        : Runner(Test.Session,
                 {.CheckSumEnable = [this] { return Checksum; },
                  .Log = [this](const std::string& text) { Test.Log.push_back("log " + text); },
                  .Show = [this](const std::string& command,
                                 const std::string& reply) { Shown.emplace_back(command, reply); },
                  .Progress = [this](const RunProgress& progress) { Progress.push_back(progress); },
                  .Yield = [this] { OnYield(); }}),
          Control(Runner, [this] { Buttons.push_back(Control.Buttons()); }) {
        Test.Session.ModuleTable[0].Address = 31;
        Test.Session.ModuleTable[0].BaudCode = 4;
        Test.Session.ModuleCount = 1;
        Test.Session.Line.SetPortBaud(1, 3, 0, 0, 0);
        Test.Log.clear();
    }

    void Choose(const std::string& content) { Control.Choose(Folder.Write("batch", content)); }

    // Milliseconds that an operation takes.
    template <class Operation>
    std::int64_t Cost(Operation operation) {
        const auto start = Test.Time.GetTickCount();
        operation();
        return Test.Time.GetTickCount() - start;
    }

    TestFolder Folder;
    ScriptedSession Test;
    std::int16_t Checksum = 0;
    std::function<void()> OnYield = [] {};
    Exchanges Shown;
    std::vector<RunProgress> Progress;
    std::vector<BatchButtons> Buttons;
    CommandRunner Runner;
    BatchControl Control;
};

constexpr BatchButtons Chosen = {.Run = true, .Step = true, .Display = true, .Repeat = true};
constexpr BatchButtons Stepped = {.Run = true, .Step = true, .Display = true, .GoTop = true, .Repeat = true};
constexpr BatchButtons SteppedToEnd = {.Display = true, .GoTop = true, .Repeat = true};

TEST(CommandRunner, SendsTypedCommands) {
    const struct {
        std::int16_t Checksum;
        const char *Command, *Bytes, *Reply, *Shown;
        int ReplyStatus;
    } cases[] = {{0, "$012", "$012\r", "!01\r", "!01", -1},
                 {1, "$012", "$012B7\r", "!0182\r", "!01", -1},
                 {1, "$012", "$012B7\r", "!0183\r", "!0183", 0}, // shown with its checksum characters
                 {1, "$002", "$002\r", "!00\r", "!00", -1},
                 {0, "", "\r", "", "", 0},
                 {1, "", "00\r", "", "", 0}};
    for (const auto& c : cases) {
        Console console;
        console.Checksum = c.Checksum;
        console.Test.Port().Queue = {{c.Reply}};
        const auto cost = console.Cost([&] { console.Runner.SendTyped(c.Command); });
        EXPECT_EQ(console.Test.Port().LastOutput, c.Bytes);
        EXPECT_EQ(console.Shown, (Exchanges{{c.Command, c.Shown}}));
        EXPECT_EQ(console.Test.Session.Line.ReplyStatus, c.ReplyStatus) << c.Bytes;
        EXPECT_EQ(cost, *c.Reply ? 0 : 400) << c.Bytes; // the long time-out
        EXPECT_EQ(console.Test.Log.at(0), std::string("log ") + c.Command);
    }
}

TEST(CommandRunner, RepeatsACommand) {
    Console console;
    console.Checksum = 1;
    console.Test.Session.RepeatCommandText = FixedText("$00abcdefghijklmnopq", RepeatCommandWidth);
    console.Test.Port().Queue = {{"!0081\r"}, {}};
    EXPECT_EQ(console.Cost([&] { console.Runner.Repeat(); }), 0); // no count yet
    console.Test.Session.RepeatCommandCount = 2;
    EXPECT_EQ(console.Cost([&] { console.Runner.Repeat(); }), 100 + 400 + 100);
    // To address 00 with checksum, unlike a typed command.
    const std::string sent = "COM1 9600 $00abcdefghijklm" + ChecksumOf("$00abcdefghijklm");
    EXPECT_EQ(console.Test.Log, (Lines{"log $00abcdefghijklm", sent, "log $00abcdefghijklm", sent}));
    EXPECT_EQ(console.Shown.at(0).second, "!00");
    EXPECT_EQ(console.Progress, (std::vector<RunProgress>{{1, 1, 1, 2}, {1, 1, 2, 2}}));
}

TEST(BatchControl, RunsPassByPass) {
    Console console;
    console.Choose("$012\r\n\r\n$1F2");
    EXPECT_EQ(console.Control.Buttons(), Chosen);
    console.Test.Session.BatchRepeatCount = 2;
    console.Buttons.clear();
    // Every line: no reply and a pause; three changes of the baud rate; a pause after each pass.
    EXPECT_EQ(console.Cost([&] { console.Control.Run(); }), 6 * 500 + 3 * 1000 + 2 * 100);
    const Lines pass = {"log $012",       "COM1 9600 $012", "log ",
                        "COM1 9600 ",     "log $1F2",       "COM1 settings 19200,n,8,1",
                        "COM1 19200 $1F2"};
    Lines twice = pass;
    twice.insert(twice.end(), pass.begin(), pass.end());
    twice.insert(twice.begin() + 8, "COM1 settings 9600,n,8,1");
    EXPECT_EQ(console.Test.Log, twice);
    EXPECT_EQ(console.Buttons, (std::vector<BatchButtons>{{.Stop = true}, Chosen}));
    EXPECT_EQ(console.Progress.at(4), (RunProgress{2, 2, 2, 3}));

    console.Test.Session.BatchRepeatCount = 0;
    EXPECT_EQ(console.Cost([&] { console.Control.Run(); }), 0);
    EXPECT_EQ(console.Test.Log, twice);
}

TEST(BatchControl, StepsRunsAndRewinds) {
    Console console;
    console.Checksum = 1;
    console.Choose("$002\n$012\n");
    const auto step = [&](const char* command, const BatchButtons& buttons, int next) {
        EXPECT_EQ(console.Cost([&] { console.Control.Step(); }), 400); // no pause
        EXPECT_EQ(console.Shown.back().first, command);
        EXPECT_EQ(console.Control.Buttons(), buttons);
        EXPECT_EQ(console.Control.BatchLineNumber(), next);
    };
    step("$002", Stepped, 2);
    EXPECT_EQ(console.Test.Port().LastOutput, "$002B6\r"); // with checksum, unlike a typed command
    console.Control.Display([](BatchFile& file) { EXPECT_EQ(file.ReadLine(), "$002"); });
    step("$012", SteppedToEnd, 3);
    console.Control.Step(); // nothing is left
    EXPECT_EQ(console.Shown.size(), 2u);

    console.Control.GoTop();
    EXPECT_EQ(console.Control.Buttons(), Chosen);
    step("$002", Stepped, 2);
    console.Buttons.clear();
    console.Control.Run();
    EXPECT_EQ(console.Shown.size(), 5u);
    EXPECT_EQ(console.Buttons, (std::vector<BatchButtons>{{.Stop = true, .GoTop = true}, Stepped}));
    step("$002", Stepped, 2);
}

TEST(BatchControl, StopEndsARunOfAnEmptyFile) {
    Console console;
    console.Choose("");
    console.Test.Session.BatchRepeatCount = 32767;
    console.OnYield = [&] { console.Runner.Stop(); };
    EXPECT_EQ(console.Cost([&] { console.Control.Run(); }), 100);
    EXPECT_EQ(console.Control.Buttons(), Chosen);
}

TEST(BatchControl, GoesOnAfterALostPort) {
    Console console;
    console.Choose("$012\n$022\n");
    console.Control.Step();
    console.Test.Port().OutputsUntilFailure = 0;
    EXPECT_NE(FailureText([&] { console.Control.Step(); }), "");
    console.Test.Port().OutputsUntilFailure = 2;
    console.Control.Step(); // the line that could not be sent; the port opens by itself
    EXPECT_EQ(console.Shown.back().first, "$022");
    EXPECT_NE(FailureText([&] { console.Control.Run(); }), "");
    EXPECT_EQ(console.Control.Buttons(), Stepped); // from the top again
}

} // namespace
} // namespace kavro
