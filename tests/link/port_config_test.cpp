#include "link/port_config.h"
#include "link/runtime_failure.h"
#include "support/test_session.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>

#include <unistd.h>

namespace kavro {
namespace {

using Messages = std::vector<std::pair<std::string, std::string>>;
using BaudFlags = std::array<std::int16_t, 9>;

const std::pair<std::string, std::string> ContentError = {
    "COM config file content error. Use default setting: COM2, baud rate 9600", ""};

Messages OpenError(const std::string& description) {
    const std::string title = "Open or configure COM port error";
    return {{description, title},
            {"The COM Port Setting dialog box will appear for you to configure and open a COM port.", title}};
}

/// A folder of its own for COM.CFG; every reading starts a new session.
class PortConfigTest : public testing::Test {
protected:
    PortConfigTest() { std::filesystem::create_directories(Folder); }
    ~PortConfigTest() override { std::filesystem::remove_all(Folder); }

    /// Writes COM.CFG, unless `content` is null, and reads it; COM2 cannot be opened when `faulty`.
    void Start(const char* content, std::optional<std::int16_t> startPort = {}, bool faulty = false) {
        if (content)
            std::ofstream(Path, std::ios::binary) << content;
        Test = std::make_unique<ScriptedSession>();
        Test->Port().PortOpen(false);
        Test->Port(2).FailOpen = faulty;
        Test->Log.clear();
        DialogsShown = 0;
        ReadPortConfig(TestLine(), Path, startPort, Test->Messages, [this] {
            ++DialogsShown;
            EXPECT_EQ(Test->Messages.Shown.size(), 2U) << "the messages come first";
        });
    }

    Line& TestLine() const { return Test->Session.Line; }

    const std::filesystem::path Folder =
        testing::TempDir() + "kavro_port_config_test." + std::to_string(getpid());
    const std::string Path = (Folder / "COM.CFG").string();
    std::unique_ptr<ScriptedSession> Test;
    int DialogsShown = 0;
};

TEST_F(PortConfigTest, FilesThatCanBeRead) {
    const struct {
        const char *Content, *Settings; // null: there is no file; what a file would hold that is written now
        std::int16_t LongTimeout;
        bool Good;
    } cases[] = {{nullptr, "100\n1\nn,8,1\n9600\n", 400, true},
                 {"100\n2\nn,8,1\n9600\n19200\n", "100\n2\nn,8,1\n9600\n19200\n", 400, true},
                 {"250\r\n4\r\no\r\n7\r\n2\r\n115200\r\n57600", "250\n4\nn,8,1\n115200\n57600\n", 1000, true},
                 {" 8191 , 1 , \"e\" , 8 , 1 , 1200 , 38400 ", "8191\n1\nn,8,1\n1200\n38400\n", 32764, true},
                 {"50\n3\n\"n,x\",8,1\n9600\n9600\n\n\n", "50\n3\nn,8,1\n9600\n", 200, true},
                 {"100,2,,8,1,14400,9600,300", "100\n2\nn,8,1\n9600\n", 400, true},
                 {"200\n5\nn,8,1\n2400\n4800\n", "100\n2\nn,8,1\n2400\n4800\n", 400, false},
                 {"200\n-1\nn,8,1\n2400\n", "100\n2\nn,8,1\n2400\n", 400, false},
                 {"200\n9\nn,8,1", "100\n2\nn,8,1\n9600\n", 400, false},
                 {"200\n3\nn,8,1\n14400\n0\n-9600\n", "100\n3\nn,8,1\n9600\n", 400, false},
                 {"200\n3\nn,8,1\n", "100\n3\nn,8,1\n9600\n", 400, false},
                 {"9000\n3\nn,8,1\n1200\n", "100\n3\nn,8,1\n1200\n", 400, false}}; // 4 times that overflows
    for (const auto& [content, settings, longTimeout, good] : cases) {
        SCOPED_TRACE(content ? content : "no file");
        Start(content);
        EXPECT_EQ(PortConfigText(TestLine()), settings);
        EXPECT_EQ(TestLine().LongReplyTimeout, longTimeout);
        EXPECT_EQ(TestLine().SettingsOf(TestLine().CurrentPort).DataBits, 8);
        EXPECT_EQ(Test->Log, Lines{"COM" + std::to_string(TestLine().CurrentPort) + " open"});
        EXPECT_EQ(Test->Messages.Shown, good ? Messages{} : Messages{ContentError});
        EXPECT_EQ(DialogsShown, 0);
    }
}

TEST_F(PortConfigTest, FilesThatCannotBeRead) {
    const std::pair<const char*, const char*> cases[] = {
        {"", "COM1: Input past the end of COM.CFG: there is no reply time-out. Choose the settings anew."},
        {"100\n3\nn,8\n",
         "COM3: Input past the end of COM.CFG: there is no number of stop bits. Choose the settings anew."},
        {"fast\n3\nn,8,1\n", "COM1: Not a whole number: reply time-out \"fast\"."},
        {"100\n40000\nn,8,1\n", "COM1: Overflow: port number \"40000\" is not between -32768 and 32767."},
        {"100\n3\nn,8,1.5\n9600", "COM3: Not a whole number: stop bits \"1.5\"."},
        {"100\n3\nn,8,1\n9600 19200", "COM3: Not a whole number: baud rate \"9600 19200\"."},
        {"100\n0\nn,8,1\n9600", "COM0: Index out of bounds: there is no COM port 0, only COM1 to COM8."},
        {"200\n2\nn,8,1\n9600", "COM2: The device cannot be opened."},
        {"200\n5\nn,8,1\n9600", "COM2: The device cannot be opened."}}; // and no content error
    for (const auto& [content, description] : cases) {
        SCOPED_TRACE(content);
        Start(content, {}, true);
        EXPECT_EQ(Test->Messages.Shown, OpenError(description));
        EXPECT_EQ(DialogsShown, 1);
        EXPECT_TRUE(Test->Log.empty()) << "no port is open";
        EXPECT_EQ(TestLine().ReplyTimeout, 100) << "the file's time-out was not reached";
    }
    std::filesystem::remove(Path);
    std::filesystem::create_directory(Path);
    Start(nullptr);
    EXPECT_EQ(Test->Messages.Shown,
              OpenError("COM1: The settings file " + Path + " cannot be read. Check its access rights."));
}

TEST_F(PortConfigTest, APortThatIsGivenTakesTheFilesPlace) {
    Start(nullptr, 6);
    EXPECT_EQ(Test->Log, Lines{"COM6 open"});
    for (const char* content :
         {"200\n2\nn,8,1\n19200\n", "200\n5\nn,8,1\n19200\n", "200\n0\nn,8,1\n19200\n"}) {
        Start(content, 7);
        EXPECT_EQ(PortConfigText(TestLine()), "200\n7\nn,8,1\n19200\n");
        EXPECT_EQ(Test->Log, Lines{"COM7 open"});
        EXPECT_TRUE(Test->Messages.Shown.empty());
    }
}

TEST(PortConfig, TextOfTheSettings) {
    ScriptedSession test;
    Line& line = test.Session.Line;
    line.CurrentPort = 3;
    PortSettingsRecord& settings = line.SettingsOf(3);
    settings.BaudEnabled.fill(1);
    settings.DataBits = 7; // never written
    for (const auto& [parity, letter] :
         {std::pair(0, "n"), std::pair(1, "o"), std::pair(2, "e"), std::pair(7, "n")}) {
        settings.Parity = static_cast<std::int16_t>(parity);
        EXPECT_EQ(PortConfigText(line), std::string("100\n3\n") + letter +
                                            ",8,1\n1200\n2400\n4800\n9600\n19200\n38400\n115200\n57600\n");
    }
}

TEST(PortConfig, SettingsThatMayStandInTheFile) {
    for (std::int16_t port = -1; port <= 9; ++port)
        EXPECT_EQ(IsValidPortSetting(port, 57600, "?", 99, -1), port >= 0 && port <= 4) << port;
    EXPECT_FALSE(IsValidPortSetting(1, 14400, "n", 8, 1));
}

/// The COM Port dialog's OK, from COM1 open at 9600 baud.
class PortChoiceTest : public testing::Test {
protected:
    PortChoiceTest() {
        TestLine.SetPortBaud(1, 3, 0, 8, 0);
        Test.Log.clear();
        Choice.BaudEnabled = {0, 0, 0, 1};
        Choice.DataBits = "8";
        Choice.Timeout = "100";
    }

    ScriptedSession Test;
    Line& TestLine = Test.Session.Line;
    PortChoice Choice;
};

TEST_F(PortChoiceTest, StoresTheSettings) {
    Choice.BaudEnabled = {0, 0, 0, 0, 1, 0, 1, 1};
    Choice.Parity = 2;
    Choice.DataBits = "7";
    Choice.StopBits = 1;
    Choice.Timeout = "250";
    ApplyPortChoice(TestLine, Choice, Test.Messages);
    const PortSettingsRecord& settings = TestLine.SettingsOf(1);
    EXPECT_EQ(settings.BaudEnabled, (BaudFlags{0, 0, 0, 0, 1, 0, 1, 1, 0}));
    EXPECT_EQ(std::tuple(settings.Parity, settings.DataBits, settings.StopBits), std::tuple(2, 7, 1));
    EXPECT_EQ(std::tuple(TestLine.ReplyTimeout, TestLine.LongReplyTimeout), std::tuple(250, 1250));
    EXPECT_EQ(Test.Log, Lines{"COM1 settings 19200,n,8,1"}); // the lowest rate chosen
    EXPECT_TRUE(Test.Messages.Shown.empty());
}

TEST_F(PortChoiceTest, OpensTheNewPortBeforeClosingTheOld) {
    Choice.Port = 8;
    ApplyPortChoice(TestLine, Choice, Test.Messages);
    EXPECT_EQ(TestLine.CurrentPort, 8);
    EXPECT_EQ(Test.Log, (Lines{"COM8 open", "COM1 close", "COM8 settings 9600,n,8,1"}));
}

TEST_F(PortChoiceTest, WithoutABaudRate9600IsApplied) {
    Choice.BaudEnabled = {};
    ApplyPortChoice(TestLine, Choice, Test.Messages);
    EXPECT_EQ(Test.Log, Lines{"COM1 settings 9600,n,8,1"});
}

TEST_F(PortChoiceTest, TimeOuts) {
    const Messages refused = {{"TimeOut Value must greater than or equal to 100.", ""}};
    const struct {
        const char *Text, *After;
        std::int16_t Timeout, LongTimeout;
    } cases[] = {{"99", "100", 100, 500},
                 {"0", "100", 100, 500},
                 {"100", "100", 100, 500},
                 {"6553", "6553", 6553, 32765}};
    for (const auto& [text, after, timeout, longTimeout] : cases) {
        Test.Messages.Shown.clear();
        Choice.Timeout = text;
        ApplyPortChoice(TestLine, Choice, Test.Messages);
        EXPECT_EQ(Choice.Timeout, after);
        EXPECT_EQ(std::tuple(TestLine.ReplyTimeout, TestLine.LongReplyTimeout),
                  std::tuple(timeout, longTimeout));
        EXPECT_EQ(Test.Messages.Shown, std::string(text) == after ? Messages{} : refused);
    }
}

TEST_F(PortChoiceTest, AFailureLeavesThePortInUse) {
    const std::function<void()> faults[] = {[this] { Choice.Timeout = "6554"; }, // 5 times that overflows
                                            [this] { Choice.Timeout = ""; },
                                            [this] { Choice.DataBits = ""; },
                                            [this] { Test.Port(2).FailOpen = true; },
                                            [this] { Test.Port(2).FailSettings = true; },
                                            [this] { Choice.Port = 9; }};
    for (const auto& fault : faults) {
        Choice.Port = 2;
        Choice.DataBits = "8";
        Choice.Timeout = "300";
        Test.Port(2).FailOpen = Test.Port(2).FailSettings = false;
        fault();
        EXPECT_THROW(ApplyPortChoice(TestLine, Choice, Test.Messages), RuntimeFailure);
        EXPECT_EQ(TestLine.CurrentPort, 1);
        EXPECT_TRUE(Test.Port(1).PortOpen());
        EXPECT_FALSE(Test.Port(2).PortOpen());
        EXPECT_EQ(TestLine.ReplyTimeout, 100);
    }
}

TEST_F(PortChoiceTest, APortThatWasNotOpenIsTriedAgain) {
    Test.Port().PortOpen(false);
    ApplyPortChoice(TestLine, Choice, Test.Messages);
    EXPECT_TRUE(Test.Port().PortOpen());
    TestLine.CurrentPort = 0; // left behind by COM.CFG
    ApplyPortChoice(TestLine, Choice, Test.Messages);
    EXPECT_EQ(TestLine.CurrentPort, 1);
}

} // namespace
} // namespace kavro
