#include "terminal/command_runner.h"

#include "support/test_session.h"
#include "terminal/address_rule.h"
#include "terminal/batch_control.h"
#include "terminal/batch_file.h"
#include "terminal/command_log.h"
#include "terminal/command_words.h"
#include "terminal/console_rows.h"
#include "terminal/test_folder.h"

#include <sys/stat.h>

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

Lines ReadAll(BatchFile& file) {
    Lines lines;
    while (!file.AtEnd())
        lines.push_back(file.ReadLine());
    return lines;
}

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
    EXPECT_EQ(Progress.at(4), (RunProgress{2, 2, 2, 3, 2}));

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

TEST_F(ConsoleTest, PassesOverCommentsAndPausesBetweenCommands) {
    Choose("; top\n\n$012\n \t; more\n$022\n; end\n \n");
    const std::tuple<const char*, BatchButtons, int> steps[] = {{"$012", Stepped, 5},
                                                                {"$022", SteppedToEnd, 8}};
    for (const auto& [command, buttons, next] : steps) {
        Control.Step(true);
        EXPECT_EQ(Shown.back().first, command);
        EXPECT_EQ(Control.Buttons(), buttons);
        EXPECT_EQ(Control.BatchLineNumber(), next);
        Control.Display(ReadAll); // leaves it where it stood
    }
    Control.Step(true);
    EXPECT_EQ(Shown.size(), 2U);
    EXPECT_EQ(Control.Buttons(), SteppedToEnd);

    Session.BatchRepeatCount = 2;
    EXPECT_EQ(Cost([&] { Control.Run({true, 5000}); }), 4 * 500 + 3 * 5000 + 2 * 100);
    EXPECT_EQ(Progress, (std::vector<RunProgress>{{1, 2, 1, 2, 3},
                                                  {1, 2, 1, 2, 3, true},
                                                  {1, 2, 2, 2, 5},
                                                  {2, 2, 0, 2, 5, true},
                                                  {2, 2, 1, 2, 3},
                                                  {2, 2, 1, 2, 3, true},
                                                  {2, 2, 2, 2, 5}}));
    OnYield = [&, yields = 0]() mutable { ++yields == 3 ? Runner.Stop() : void(); };
    EXPECT_EQ(Cost([&] { Control.Run({true, 5000}); }), 500 + 2 * 20) << "in the middle of the pause";
    EXPECT_EQ(Shown.size(), 7U);
    Choose("; alone\n");
    Control.Step(true);
    EXPECT_EQ(Control.Buttons(), SteppedToEnd);
    EXPECT_NE(FailureText([&] { Control.Run({.SkipComments = true}); }), "");
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

TEST(AddressRule, DecidesBaudRateAndChecksum) {
    ScriptedSession test;
    const struct { std::int16_t Address, BaudCode; } known[] = {{31, 6}, {0, 4}, {31, 1}, {5, 2}, {10, 7}};
    for (int i = 0; i < 5; ++i) {
        test.Session.ModuleTable[i].Address = known[i].Address;
        test.Session.ModuleTable[i].BaudCode = known[i].BaudCode;
    }
    test.Session.ModuleCount = 4; // the last one is no longer known
    const std::tuple<const char*, std::int16_t, bool> cases[] = {
        {"$1F2", 6, false}, // the first of two
        {"$1f2", 6, false}, {"#05", 2, false},  {"$5", 2, false},   {"$002", 3, true},   {"$0", 3, true},
        {"%0001", 3, true}, {"$0A2", 3, false}, {"$112", 3, false}, {"~**", 3, false},   {"~", 3, false},
        {"", 3, false},     {"$5 2", 3, false}, {"$-1", 3, false},  {" $1F2", 3, false}, {"$0x1F", 3, false}};
    for (const auto& [command, code, zero] : cases) {
        SCOPED_TRACE(command);
        EXPECT_EQ(TerminalAddressBaud(test.Session, command), code);
        for (const std::int16_t enable : {std::int16_t{0}, std::int16_t{1}}) {
            const SendSettings repeated = {enable, code};
            EXPECT_EQ(TypedCommandSettings(test.Session, command, enable),
                      (zero ? SendSettings{0, code} : repeated));
            EXPECT_EQ(RepeatedCommandSettings(test.Session, command, enable), repeated);
        }
    }
}

TEST(CommandWords, SayHowATypedCommandWillBeSent) {
    ScriptedSession test;
    test.Session.ModuleTable[0] = {.Address = 5, .Model = "8250  ", .BaudCode = 4, .Checksum = 1};
    test.Session.ModuleTable[1] = {.Address = 0x1F, .Model = "8310  ", .BaudCode = -2};
    test.Session.ModuleCount = 2;
    test.Session.Tags.Path = "line";
    test.Session.Tags.Modules[5] = {.Model = "8250", .Module = {"TT-101", ""}};
    const std::tuple<const char*, std::int16_t, const char*> cases[] = {
        {"$052", 1, "Address 05 (8250, TT-101): 19200 baud, with checksum."},
        {"$05", 0,
         "Address 05 (8250, TT-101): 19200 baud, without checksum. The module is set up with one: tick "
         "Checksum enable."},
        {"#1f", 0, "Address 1F (8310): 9600 baud, without checksum."},
        {"$062", 1, "Address 06 is not in the list: 9600 baud, with checksum."},
        {"$0", 1,
         "Address 00: what is typed goes there at 9600 baud and without checksum, whatever is ticked."},
        {"~**", 1, "No address: 9600 baud, with checksum."}};
    for (const auto& [command, enable, words] : cases)
        EXPECT_EQ(SendingWords(test.Session, command, enable), words);
}

// What is drawn after commands "c1" to "cN" with the replies "r1" to "rN": six pairs are appended, and from
// then on the latest six redrawn.
std::vector<ConsoleText> Expected(int commands) {
    const bool redrawn = commands > 6;
    std::vector<ConsoleText> texts;
    if (!redrawn)
        texts.push_back({90, 30, ">"});
    const int first = redrawn ? commands - 5 : 1;
    for (int n = first; n <= commands; ++n) {
        const std::string number = std::to_string(n);
        const int top = (n - first) * 480;
        texts.push_back({redrawn ? 90 : 225, top + (redrawn ? 30 : 40), (redrawn ? ">c" : "c") + number});
        texts.push_back({redrawn ? 90 : 110, top + (redrawn ? 270 : 280), "r" + number});
        if (!redrawn || n == commands)
            texts.push_back({90, top + 510, ">"});
    }
    return texts;
}

TEST(ConsoleRows, ShowTheLatestSixPairs) {
    ConsoleRows rows;
    for (int n = 0; n <= 33000; ++n) { // the count would leave 16 bits after 16383 commands
        if (n > 0)
            rows.ShowTerminalLine("c" + std::to_string(n), "r" + std::to_string(n));
        const int pairs = std::min(n, 6);
        ASSERT_EQ(rows.Drawn(), Expected(n)) << n;
        ASSERT_EQ(rows.EntryTop(), pairs * 480) << n;
        ASSERT_EQ(rows.Rows().size(), static_cast<std::size_t>(2 * pairs)) << n;
        ASSERT_TRUE(n > 6 ? rows.LineCount() > 13 : rows.LineCount() == 2 * n) << n;
    }
}

TEST(BatchFile, ReadsLinesWhateverTheirEnds) {
    const TestFolder folder;
    const std::pair<std::string, Lines> cases[] = {
        {"", {}},
        {"\r\n", {""}},
        {"$012", {"$012"}},
        {"$012\r\n$022\r\n", {"$012", "$022"}},
        {"$012\n\n$022", {"$012", "", "$022"}},
        {"$012\r$022\r", {"$012", "$022"}},
        {"a\n\r\nb", {"a", "", "b"}},
        {"\xEF\xBB\xBF$012\r\n", {"$012"}},
        {"\xEF\xBB\xBF", {}},
        {"\xEF\xBB", {"\xEF\xBB"}},
        {std::string("a\0b \xFF\n", 6), {std::string("a\0b \xFF", 5)}}};
    for (const auto& [content, lines] : cases) {
        BatchFile file;
        file.Open(folder.Write("batch", content));
        EXPECT_EQ(ReadAll(file), lines) << content;
        file.Rewind();
        file.Skip(1);
        EXPECT_EQ(ReadAll(file).size(), lines.empty() ? 0 : lines.size() - 1) << content;
        EXPECT_TRUE(file.AtEnd());
        file.Skip(5); // beyond the end
    }
}

TEST(BatchFile, RefusesWhatCannotBeRead) {
    const TestFolder folder;
    BatchFile file;
    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0);
    for (const std::string& path : {folder.Path(), folder.Path("missing"), folder.Path("pipe")})
        EXPECT_NE(FailureText([&] { file.Open(path); }), "") << path;
    file.Open(folder.Write("huge", std::string(32768, 'a')));
    EXPECT_NE(FailureText([&] { file.ReadLine(); }), "");
}

TEST(CommandLog, HoldsEachCommandAtOnceAndOpensAgainAfterAFailure) {
    const TestFolder folder;
    CommandLog log;
    log.Write("$002"); // no file yet
    EXPECT_NE(FailureText([&] { log.Open(folder.Path()); }), "");
    log.Open("/dev/full");
    EXPECT_NE(FailureText([&] { log.Write("$012"); }).find("No space left"), std::string::npos);
    log.Open(folder.Write("log", "old content\n"));
    EXPECT_EQ(folder.Read("log"), "");
    log.Write("  $012 ");
    log.Write("");
    EXPECT_EQ(folder.Read("log"), "$012\n\n"); // although it is still open
}

} // namespace
} // namespace kavro
