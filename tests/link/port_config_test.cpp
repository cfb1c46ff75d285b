#include "link/port_config.h"
#include "support/test_session.h"

#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace kavro {
namespace {

const std::string Path = testing::TempDir() + "kavro_port_config_test." + std::to_string(getpid());

/// A session that has read COM.CFG of that content (null: there is none); COM `refusing` cannot be opened.
struct StartUp : ScriptedSession {
    explicit StartUp(const char* content, std::optional<std::int16_t> startPort = {}, int refusing = 8) {
        if (content)
            std::ofstream(Path, std::ios::binary) << content;
        Port().PortOpen(false);
        Port(refusing).FailOpen = true;
        Log.clear();
        ReadPortConfig(Session.Line, Path, startPort, Messages,
                       [this] { MessagesBefore = Messages.Shown.size(); });
    }
    ~StartUp() { std::filesystem::remove_all(Path); }

    std::size_t MessagesBefore = 0; ///< messages that came before the COM Port dialog
};

TEST(PortConfig, FilesThatCanBeRead) {
    const ShownMessages contentError = {
        {"COM config file content error. Use default setting: COM2, baud rate 9600", ""}};
    // Content (null: there is no file), what would be written now, long time-out, whether it is good.
    const std::tuple<const char*, const char*, std::int16_t, bool> cases[] = {
        {nullptr, "100\n1\nn,8,1\n9600\n", 400, true},
        {"100\n2\nn,8,1\n9600\n19200\n", "100\n2\nn,8,1\n9600\n19200\n", 400, true},
        {"250\r\n4\r\no\r\n7\r\n2\r\n115200\r\n57600", "250\n4\nn,8,1\n115200\n57600\n", 1000, true},
        {" 8191 , 1 , \"e\" , 8 , 1 , 1200 , 38400 ", "8191\n1\nn,8,1\n1200\n38400\n", 32764, true},
        {"50\n3\n\"n,x\",8,1\n9600\n9600\n\n\n", "50\n3\nn,8,1\n9600\n", 200, true},
        {"100,2,,8,1,14400,9600,300", "100\n2\nn,8,1\n9600\n", 400, true},
        {"200\n5\nn,8,1\n2400\n4800\n", "100\n2\nn,8,1\n2400\n4800\n", 400, false},
        {"200\n-1\nn,8,1\n2400\n", "100\n2\nn,8,1\n2400\n", 400, false},
        {"200\n3\nn,8,1\n14400\n0\n-9600\n", "100\n3\nn,8,1\n9600\n", 400, false},
        {"9000\n3\nn,8,1\n1200\n", "100\n3\nn,8,1\n1200\n", 400, false}}; // 4 times that overflows
    for (const auto& [content, settings, longTimeout, good] : cases) {
        SCOPED_TRACE(content ? content : "no file");
        StartUp test(content);
        const Line& line = test.Session.Line;
        EXPECT_EQ(PortConfigText(line), settings);
        EXPECT_EQ(line.LongReplyTimeout, longTimeout);
        EXPECT_EQ(test.Log, Lines{"COM" + std::to_string(line.CurrentPort) + " open"});
        EXPECT_EQ(test.Messages.Shown, good ? ShownMessages{} : contentError);
    }
}

// What is told, and what is saved when the dialog that then appears is cancelled.
TEST(PortConfig, FilesThatCannotBeUsed) {
    const auto expectTold = [](const StartUp& test, const std::string& description) {
        const std::string title = "Open or configure COM port error";
        const std::string next =
            "The COM Port Setting dialog box will appear for you to configure and open a COM port.";
        EXPECT_EQ(test.Messages.Shown, (ShownMessages{{description, title}, {next, title}}));
        EXPECT_EQ(test.MessagesBefore, 2U);
        EXPECT_TRUE(test.Log.empty()) << "no port is open";
        const Line& line = test.Session.Line;
        EXPECT_EQ(std::tuple(line.ReplyTimeout, line.LongReplyTimeout), std::tuple(100, 400)) << "meanwhile";
    };
    const std::string past = "Input past the end of COM.CFG: there is no ",
                      gone = "The device cannot be opened.", initial = "100\n1\nn,8,1\n9600\n";
    const std::tuple<const char*, std::string, std::string> cases[] = {
        {"", "COM1: " + past + "reply time-out. Choose the settings anew.", initial},
        {"500\n2\nn,8\n", "COM2: " + past + "number of stop bits. Choose the settings anew.",
         "100\n2\nn,8,1\n9600\n"},
        {"fast\n3\nn,8,1\n", "COM1: Not a whole number: reply time-out \"fast\".", initial},
        {"100\n40000\nn,8,1\n", "COM1: Overflow: port number \"40000\" is not between -32768 and 32767.",
         initial},
        {"500\n2\nn,8,1\n9600 19200", "COM2: Not a whole number: baud rate \"9600 19200\".",
         "100\n2\nn,8,1\n9600\n"},
        {"500\n2\nn,8,1\n19200\n", "COM2: " + gone, "500\n2\nn,8,1\n19200\n"}, // the adapter is not there
        {"50\n2\nn,8,1\n9600\n", "COM2: " + gone, "50\n2\nn,8,1\n9600\n"},
        {"500\n5\nn,8,1\n2400\n", "COM2: " + gone, "100\n2\nn,8,1\n2400\n"}, // nor is the content good
        {"9000\n2\nn,8,1\n2400\n", "COM2: " + gone, "100\n2\nn,8,1\n2400\n"},
        {nullptr, "COM1: " + gone, initial}};
    for (const auto& [content, description, saved] : cases) {
        SCOPED_TRACE(content ? content : "no file");
        StartUp test(content, {}, content ? 2 : 1);
        expectTold(test, description);
        Line& line = test.Session.Line;
        EXPECT_EQ(PortConfigText(line), saved);
        EXPECT_EQ(line.SettingsOf(line.CurrentPort).DataBits, 8);
        test.Port(3).FailOpen = false;
        PortChoice choice{.Port = 3, .DataBits = "8", .Timeout = "200"};
        ApplyPortChoice(line, choice, test.Messages);
        EXPECT_EQ(PortConfigText(line), "200\n3\nn,8,1\n");
    }
    expectTold(StartUp("100\n0\nn,8,1\n9600"),
               "COM0: Index out of bounds: there is no COM port 0. Choose COM1 to COM8.");
    std::filesystem::create_directory(Path);
    expectTold(StartUp(nullptr),
               "COM1: The settings file " + Path + " cannot be read. Check its access rights.");
}

TEST(PortConfig, APortThatIsGivenTakesTheFilesPlace) {
    EXPECT_EQ(StartUp(nullptr, 6).Log, Lines{"COM6 open"});
    for (const char* port : {"2", "5", "0"}) {
        StartUp test(("200\n" + std::string(port) + "\nn,8,1\n19200\n").c_str(), 7);
        EXPECT_EQ(PortConfigText(test.Session.Line), "200\n7\nn,8,1\n19200\n");
        EXPECT_EQ(test.Log, Lines{"COM7 open"});
        EXPECT_TRUE(test.Messages.Shown.empty());
    }
}

TEST(PortConfig, TextOfTheSettings) {
    ScriptedSession test;
    PortSettingsRecord& settings = test.Session.Line.SettingsOf(1);
    settings.BaudEnabled.fill(1);
    settings.DataBits = 7; // never written
    for (const char* letter : {"n", "o", "e", "n"}) {
        EXPECT_EQ(PortConfigText(test.Session.Line),
                  "100\n1\n" + std::string(letter) +
                      ",8,1\n1200\n2400\n4800\n9600\n19200\n38400\n115200\n57600\n");
        ++settings.Parity;
    }
}

// The rest of the COM Port dialog's OK is tested through the dialog.
TEST(PortChoice, ChecksNumbersAndTriesAPortAgain) {
    ScriptedSession test;
    Line& line = test.Session.Line;
    test.Port().PortOpen(false);
    PortChoice choice{.DataBits = "8", .Timeout = "100"};
    ApplyPortChoice(line, choice, test.Messages); // without a baud rate 9600 is applied
    EXPECT_EQ(test.Log, (Lines{"COM1 close", "COM1 open", "COM1 settings 9600,n,8,1"}));
    EXPECT_TRUE(test.Messages.Shown.empty());
}

} // namespace
} // namespace kavro
