#include "terminal/command_runner.h"

#include "support/test_session.h"
#include "terminal/batch_control.h"
#include "terminal/test_folder.h"

namespace kavro {
namespace {

using Exchanges = std::vector<std::pair<std::string, std::string>>;

// A runner on COM1 at 9600 baud, with the module 31 at 19200, that writes down what it does.
class ConsoleTest : public testing::Test, protected ScriptedSession {
protected:
    ConsoleTest()
        : Runner(Session, {.CheckSumEnable = [this] { return Checksum; },
                           .Log = [this](const std::string& text) { Log.push_back("log " + text); },
                           .Show = [this](const std::string& command,
                                          const std::string& reply) { Shown.emplace_back(command, reply); },
                           .Progress = [this](const RunProgress& progress) { Progress.push_back(progress); },
                           .Yield = [this] { OnYield(); }}),
          Control(Runner, [this] { Buttons.push_back(Control.Buttons()); }) {
        Session.ModuleTable[0].Address = 31;
        Session.ModuleTable[0].BaudCode = 4;
        Session.ModuleCount = 1;
        Session.Line.SetPortBaud(1, 3, 0, 0, 0);
        Log.clear();
    }

    void Choose(const std::string& content) { Control.Choose(Folder.Write("batch", content)); }

    // Milliseconds that an operation takes.
    template <class Operation>
    std::int64_t Cost(Operation operation) {
        const auto start = Time.GetTickCount();
        operation();
        return Time.GetTickCount() - start;
    }

    TestFolder Folder;
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

TEST_F(ConsoleTest, SendsTypedCommands) {
    using Text = const char*;
    const std::tuple<std::int16_t, Text, Text, Text, Text, int> cases[] = {
        {0, "$012", "$012\r", "!01\r", "!01", -1},
        {1, "$012", "$012B7\r", "!0182\r", "!01", -1},
        {1, "$012", "$012B7\r", "!0183\r", "!0183", 0}, // shown with its checksum characters
        {1, "$002", "$002\r", "!00\r", "!00", -1},
        {0, "", "\r", "", "", 0},
        {1, "", "00\r", "", "", 0}};
    for (const auto& [checksum, command, bytes, reply, shown, status] : cases) {
        Shown.clear();
        Log.clear();
        Checksum = checksum;
        Port().Queue = {{reply}};
        const auto cost = Cost([&, typed = command] { Runner.SendTyped(typed); });
        EXPECT_EQ(Port().LastOutput, bytes);
        EXPECT_EQ(Shown, (Exchanges{{command, shown}}));
        EXPECT_EQ(Session.Line.ReplyStatus, status) << bytes;
        EXPECT_EQ(cost, *reply ? 0 : 400) << bytes; // the long time-out
        EXPECT_EQ(Log.at(0), std::string("log ") + command);
    }
}

TEST_F(ConsoleTest, RepeatsACommand) {
    Checksum = 1;
    Session.RepeatCommandText = FixedText("$00abcdefghijklmnopq", RepeatCommandWidth);
    Port().Queue = {{"!0081\r"}, {}};
    EXPECT_EQ(Cost([&] { Runner.Repeat(); }), 0); // no count yet
    Session.RepeatCommandCount = 2;
    EXPECT_EQ(Cost([&] { Runner.Repeat(); }), 100 + 400 + 100);
    // To address 00 with checksum, unlike a typed command.
    const std::string sent = "COM1 9600 $00abcdefghijklm" + ChecksumOf("$00abcdefghijklm");
    EXPECT_EQ(Log, (Lines{"log $00abcdefghijklm", sent, "log $00abcdefghijklm", sent}));
    EXPECT_EQ(Shown.at(0).second, "!00");
    EXPECT_EQ(Progress, (std::vector<RunProgress>{{1, 1, 1, 2}, {1, 1, 2, 2}}));
}

TEST_F(ConsoleTest, RunsPassByPass) {
    Choose("$012\r\n\r\n$1F2");
    EXPECT_EQ(Control.Buttons(), Chosen);
    Session.BatchRepeatCount = 2;
    Buttons.clear();
    // Every line: no reply and a pause; three changes of the baud rate; a pause after each pass.
    EXPECT_EQ(Cost([&] { Control.Run(); }), 6 * 500 + 3 * 1000 + 2 * 100);
    const Lines pass = {"log $012",       "COM1 9600 $012", "log ",
                        "COM1 9600 ",     "log $1F2",       "COM1 settings 19200,n,8,1",
                        "COM1 19200 $1F2"};
    Lines twice = pass;
    twice.insert(twice.end(), pass.begin(), pass.end());
    twice.insert(twice.begin() + 8, "COM1 settings 9600,n,8,1");
    EXPECT_EQ(Log, twice);
    EXPECT_EQ(Buttons, (std::vector<BatchButtons>{{.Stop = true}, Chosen}));
    EXPECT_EQ(Progress.at(4), (RunProgress{2, 2, 2, 3}));

    Session.BatchRepeatCount = 0;
    EXPECT_EQ(Cost([&] { Control.Run(); }), 0);
    EXPECT_EQ(Log, twice);
}

TEST_F(ConsoleTest, StepsRunsAndRewinds) {
    Checksum = 1;
    Choose("$002\n$012\n");
    const auto step = [&](const char* command, const BatchButtons& buttons, int next) {
        EXPECT_EQ(Cost([&] { Control.Step(); }), 400); // no pause
        EXPECT_EQ(Shown.back().first, command);
        EXPECT_EQ(Control.Buttons(), buttons);
        EXPECT_EQ(Control.BatchLineNumber(), next);
    };
    step("$002", Stepped, 2);
    EXPECT_EQ(Port().LastOutput, "$002B6\r"); // with checksum, unlike a typed command
    Control.Display([](BatchFile& file) { EXPECT_EQ(file.ReadLine(), "$002"); });
    step("$012", SteppedToEnd, 3);
    Control.Step(); // nothing is left
    EXPECT_EQ(Shown.size(), 2u);

    Control.GoTop();
    EXPECT_EQ(Control.Buttons(), Chosen);
    step("$002", Stepped, 2);
    Buttons.clear();
    Control.Run();
    EXPECT_EQ(Shown.size(), 5u);
    EXPECT_EQ(Buttons, (std::vector<BatchButtons>{{.Stop = true, .GoTop = true}, Stepped}));
    step("$002", Stepped, 2);
}

TEST_F(ConsoleTest, StopEndsARunOfAnEmptyFile) {
    Choose("");
    Session.BatchRepeatCount = 32767;
    OnYield = [&] { Runner.Stop(); };
    EXPECT_EQ(Cost([&] { Control.Run(); }), 100);
    EXPECT_EQ(Control.Buttons(), Chosen);
}

TEST_F(ConsoleTest, GoesOnAfterALostPort) {
    Choose("$012\n$022\n");
    Control.Step();
    Port().OutputsUntilFailure = 0;
    EXPECT_NE(FailureText([&] { Control.Step(); }), "");
    Port().OutputsUntilFailure = 2;
    Control.Step(); // the line that could not be sent; the port opens by itself
    EXPECT_EQ(Shown.back().first, "$022");
    EXPECT_NE(FailureText([&] { Control.Run(); }), "");
    EXPECT_EQ(Control.Buttons(), Stepped); // from the top again
}

} // namespace
} // namespace kavro
