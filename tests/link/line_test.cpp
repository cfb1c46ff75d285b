#include "support/test_session.h"

namespace kavro {
namespace {

class LineTest : public testing::Test {
protected:
    ScriptedSession Test;
    Line& TestLine = Test.Session.Line;
    std::string Reply;
};

TEST_F(LineTest, BaudRatesGoThroughSettingsOrTheDeviceControlBlock) {
    const std::pair<std::int16_t, const char*> cases[] = {
        {0, "settings 1200"},  {1, "settings 2400"}, {2, "settings 4800"}, {3, "settings 9600"},
        {4, "settings 19200"}, {5, "state 38400"},   {6, "state 115200"},  {7, "state 57600"},
        {8, "settings 9600"},  {-2, "settings 9600"}};
    std::int64_t milliseconds = 0;
    for (const auto& [code, call] : cases) {
        Test.Log.clear();
        TestLine.SetPortBaud(1, code, 2, 7, 2); // parity, data bits and stop bits never reach the wire
        TestLine.SetPortBaud(1, code, 0, 8, 0); // no change: no call, no pause
        EXPECT_EQ(Test.Log, Lines{std::string("COM1 ") + call + ",n,8,1"});
        EXPECT_EQ(Test.Time.GetTickCount(), milliseconds += 1000);
    }
    Test.Port(2).PortOpen(true);
    TestLine.SetPortBaud(2, -2, 0, 8, 0);
    EXPECT_EQ(Test.Log.back(), "COM2 settings 9600,n,8,1") << "every port has a rate of its own";
}

TEST_F(LineTest, MissingAndClosedPortsFail) {
    for (const int port : {-1, 0, 9})
        EXPECT_THROW(TestLine.CommPort(port), RuntimeFailure);
    Test.Port().PortOpen(false);
    EXPECT_THROW(TestLine.SendCommand("$012", 0, 3), RuntimeFailure);
    EXPECT_EQ(TestLine.PortBaudCode[0], -1) << "a baud rate that was not applied is not remembered";
    EXPECT_THROW(TestLine.ReceiveReply(Reply, 0, 0, 100), RuntimeFailure);
}

TEST_F(LineTest, CommandLine) {
    const std::tuple<const char*, std::int16_t, const char*> cases[] = {
        {"$012", 0, "$012\r"},   {"$012", 1, "$012B7\r"}, {"  $012 ", 1, "$012B7\r"},
        {"$01 2", 0, "$01 2\r"}, {"$012", -1, "$012\r"},  {"$012", 2, "$012\r"},
        {"", 1, "00\r"},         {"@@@@", 1, "@@@@00\r"}, {"\377\377", 1, "\377\377FE\r"}};
    for (const auto& [command, checksum, bytes] : cases) {
        TestLine.SendCommand(command, checksum, 3);
        EXPECT_EQ(Test.Port().LastOutput, bytes);
    }
    EXPECT_EQ(Test.Time.GetTickCount(), 1000) << "only the first command changes the baud rate";
}

TEST_F(LineTest, OverlongLinesAreErrors) {
    EXPECT_EQ(ChecksumOf(std::string(128, '\xFF') + '\x7F'), "FF"); // 32767
    EXPECT_THROW(TestLine.SendCommand(std::string(128, '\xFF') + '\x80', 1, 3), RuntimeFailure);
    EXPECT_EQ(Test.Port().LastOutput, "");
    Test.Port().Receive({std::string(328, 'd') + "00\r"});
    EXPECT_THROW(TestLine.ReceiveReply(Reply, 1, 0, 100), RuntimeFailure);
    Test.Port().Receive({std::string(40000, '!')}); // a line that never falls silent
    EXPECT_THROW(TestLine.ReceiveReply(Reply, 0, 0, 100), RuntimeFailure);
}

TEST_F(LineTest, TimeOutsRunFromTheLastCharacter) {
    // What comes and when, the pause before, whether it is complete, the reply, milliseconds.
    const std::tuple<ScriptedReply, int, bool, const char*, std::int64_t> cases[] = {
        {{""}, 0, false, "", 100},             // silence
        {{""}, 50, false, "", 150},            // the time-out begins after the pause
        {{"!01\r", 99}, 0, true, "!01", 99},   // acted on when its carriage return arrives
        {{"!01\r", 100}, 0, true, "!01", 100}, // just as the time is up: it is there
        {{"!01\r", 101}, 0, false, "", 100},
        {{"!01\r", 20}, 200, true, "!01", 200},           // the pause is kept in any case
        {{"!01\r", 90, 99}, 0, true, "!01", 90 + 3 * 99}, // slow characters are never cut off
        {{"!01", 90, 99}, 0, false, "!01", 90 + 2 * 99 + 100},
        {{"!01\n \xE9\r"}, 0, true, "!01\n \xE9", 0}};
    for (const auto& [incoming, delay, complete, expected, milliseconds] : cases) {
        ScriptedSession test;
        test.Port().Receive(incoming);
        Reply = "left over";
        EXPECT_EQ(test.Session.Line.ReceiveReply(Reply, 0, delay, 100), complete);
        EXPECT_EQ(Reply, expected);
        EXPECT_EQ(test.Time.Microseconds(), milliseconds * 1000) << incoming.Text << incoming.DelayMs;
    }
}

TEST_F(LineTest, ReplyChecksum) {
    const std::pair<const char*, const char*> good[] = {
        {"!0182", "!01"}, {"z~F8", "z~"}, {"z~f8", "z~"}, {"\377\377FE", "\377\377"}, {"00", ""}, {"0", ""}};
    for (const auto& [incoming, text] : good) {
        Test.Port().Receive({std::string(incoming) + "\r"});
        EXPECT_TRUE(TestLine.ReceiveReply(Reply, 1, 0, 100)) << incoming;
        EXPECT_EQ(Reply, text);
    }
    for (const char* wrong : {"!0183", "!01082", "!01", "!01ZZ", "!01 8", "01", "", "1", "!"}) {
        Test.Port().Receive({std::string(wrong) + "\r"});
        EXPECT_FALSE(TestLine.ReceiveReply(Reply, 1, 0, 100)) << wrong;
        EXPECT_EQ(Reply, wrong);
    }
    for (const std::int16_t checksumOn : std::array<std::int16_t, 3>{0, 2, -1}) {
        Test.Port().Receive({"!0182\r"});
        EXPECT_TRUE(TestLine.ReceiveReply(Reply, checksumOn, 0, 100));
        EXPECT_EQ(Reply, "!0182") << "not asked for: stays part of the reply";
    }
}

TEST_F(LineTest, Exchange) {
    Test.Port().Receive({"!99late\r"}); // before the command: discarded
    Test.Port().Queue = {{"!01400600\r"}, {"!0183\r"}, {"\r"}};
    EXPECT_TRUE(TestLine.Exchange("$012", 0, 3, 100));
    EXPECT_EQ(TestLine.ReplyText, "!01400600");
    EXPECT_EQ(TestLine.ReplyStatus, -1);
    EXPECT_TRUE(TestLine.ReplyIs('!') && !TestLine.ReplyIs('>'));
    EXPECT_FALSE(TestLine.Exchange("$012", 1, 3, 100));
    EXPECT_EQ(TestLine.ReplyStatus, 0);
    EXPECT_FALSE(TestLine.ReplyIs('!'));
    EXPECT_TRUE(TestLine.Exchange("$012", 0, 3, 100));
    EXPECT_FALSE(TestLine.ReplyIs('!')) << "an empty reply has no class";
}

// What arrives first being what was sent is the adapter's echo, whatever was sent; nothing else is.
TEST_F(LineTest, Echo) {
    using Text = const char*;
    const std::tuple<Text, std::int16_t, Text, bool, Text, bool> cases[] = {
        {"$012", 0, "$012\r!01400600\r", true, "!01400600", true},
        {"$012", 1, "$012B7\r!0182\r", true, "!01", true},
        {"#01+05.000", 0, "#01+05.000\r", false, "", true},
        {"$012", 0, "$012\r$012\r", true, "$012", true},
        {"$012", 0, "$013\r!01\r", true, "$013", false},
        {"$012", 0, "!01\r", true, "!01", false},
        {"$012", 0, "", false, "", false}};
    int told = 0;
    TestLine.EchoFound = [&told] { ++told; };
    for (const auto& [command, checksum, incoming, complete, reply, echo] : cases) {
        TestLine.Echo = false;
        told = 0;
        Test.Time.Sleep(1000);
        Test.Port().EmptyInBuffer();
        Test.Port().Queue = {{incoming, 1, 1}};
        EXPECT_EQ(TestLine.Exchange(command, checksum, 3, 100), complete) << incoming;
        EXPECT_EQ(TestLine.ReplyText, reply);
        EXPECT_EQ(TestLine.Echo, echo);
        EXPECT_EQ(told, echo ? 1 : 0);
    }
}

TEST_F(LineTest, BoundedTransactions) {
    const std::tuple<ScriptedReply, std::int16_t, int, int> cases[] = {
        {{std::string(400, '!'), 50, 90}, 0, 100, 3000},  // a slow drip
        {{std::string(2000, '!')}, 0, 100, 0},            // no end of it
        {{std::string(300, '\xFF') + "00\r"}, 1, 100, 0}, // beyond any checksum
        {{""}, 0, 4000, 4000},                            // a time-out that is longer holds
    };
    TestLine.SetPortBaud(1, 3, 0, 8, 0);
    TestLine.Bounded = true;
    for (const auto& [incoming, checksum, timeout, milliseconds] : cases) {
        const std::int64_t start = Test.Time.GetTickCount();
        Test.Port().Queue = {incoming};
        EXPECT_FALSE(TestLine.Exchange("$012", checksum, 3, timeout));
        EXPECT_NEAR(static_cast<double>(Test.Time.GetTickCount() - start), milliseconds, 100);
        Test.Time.Sleep(40000); // the rest of it
        Test.Port().EmptyInBuffer();
    }
}

TEST_F(LineTest, AnInterruptionEndsEveryWait) {
    std::int64_t askedAt = 0;
    TestLine.Interrupted = [&] { return askedAt != 0 && Test.Time.GetTickCount() >= askedAt; };
    const std::function<void()> waits[] = {
        [&] { TestLine.SetPortBaud(1, TestLine.PortBaudCode[0] == 3 ? 4 : 3, 0, 8, 0); },
        [&] { TestLine.Exchange("$012", 0, TestLine.PortBaudCode[0], 30000); },
        [&] {
            Test.Port().Queue = {{std::string(1000, '!'), 0, 90}};
            TestLine.Exchange("$012", 0, TestLine.PortBaudCode[0], 100);
        }};
    for (const auto& wait : waits) {
        askedAt = Test.Time.GetTickCount() + 130;
        EXPECT_THROW(wait(), Interruption);
        EXPECT_GE(Test.Time.GetTickCount(), askedAt + 200) << "a quick end of its own is better";
        EXPECT_LE(Test.Time.GetTickCount(), askedAt + 500);
    }
}

// After a reply that did not come the line must have been silent for 400 ms, wherever that time went.
TEST_F(LineTest, SilenceIsAwaitedAfterAFailureOnly) {
    const auto waited = [this] {
        const std::int64_t start = Test.Time.GetTickCount();
        EXPECT_TRUE(TestLine.AwaitSilence());
        return Test.Time.GetTickCount() - start;
    };
    EXPECT_EQ(waited(), 0);
    Test.Port().Queue = {{""}, {"!01\r"}, {"!0", 10}, {""}, {""}, {""}};
    TestLine.Exchange("$012", 0, 3, 100);
    EXPECT_EQ(waited(), 400);
    EXPECT_EQ(waited(), 0);
    TestLine.Exchange("$012", 0, 3, 100);
    EXPECT_EQ(waited(), 0) << "a good one";
    TestLine.Exchange("$012", 0, 3, 100);
    Test.Time.Sleep(300);
    EXPECT_EQ(waited(), 100) << "what has passed counts";
    TestLine.Exchange("$012", 0, 3, 100);
    Test.Port().Receive({"!0182\r", 250, 10});
    EXPECT_EQ(waited(), 250 + 5 * 10 + 400) << "a late reply is discarded";
    TestLine.Exchange("$012", 0, 3, 100);
    Test.Port().PortOpen(false);
    EXPECT_EQ(waited(), 0) << "a closed port is opened by what follows";
    Test.Port().PortOpen(true);
    EXPECT_EQ(waited(), 400);
    TestLine.Exchange("$012", 0, 3, 100);
    Test.Port().Receive({std::string(100, '!'), 0, 90});
    const std::int64_t babbles = Test.Time.GetTickCount();
    EXPECT_FALSE(TestLine.AwaitSilence()) << "it never falls silent";
    EXPECT_NEAR(static_cast<double>(Test.Time.GetTickCount() - babbles), 3000, 90)
        << "and is spoken to all the same";
    EXPECT_TRUE(TestLine.FallenSilent());
}

struct HeardTraffic : LineListener {
    void Passed(const LineTraffic& traffic) override { All.push_back(traffic); }
    std::vector<LineTraffic> All;
};

TEST_F(LineTest, ListenersAreToldWhatPassesAndHowItEnds) {
    HeardTraffic heard;
    TestLine.SetPortBaud(1, 3, 0, 8, 0);
    TestLine.Listeners.push_back(&heard);
    struct Case {
        ScriptedReply Reply;
        TrafficOutcome Outcome;
        int FirstMs, LastMs;
    };
    const Case cases[] = {
        {{"!0182\r", 7, 2}, TrafficOutcome::Complete, 7, 17},
        {{"", 0}, TrafficOutcome::Silent, -1, -1},
        {{"!01", 5, 3}, TrafficOutcome::Incomplete, 5, 11},
        {{"!0183\r", 0, 1}, TrafficOutcome::Damaged, 0, 5},
        {{"\r", 4}, TrafficOutcome::Damaged, 4, 4},
        {{"$012B7\r!0182\r", 3, 1}, TrafficOutcome::Complete, 3, 15},
        {{"$012B7\r", 3, 0}, TrafficOutcome::Silent, 3, 3},
    };
    for (const auto& [reply, outcome, firstMs, lastMs] : cases) {
        Test.Port().Queue = {reply};
        const std::int64_t begun = Test.Time.UtcMicroseconds();
        TestLine.Exchange("$012", 1, 3, 100);
        const LineTraffic& told = heard.All.back();
        EXPECT_EQ(told.Sent, "$012B7\r");
        EXPECT_EQ(told.Received, reply.Text);
        EXPECT_EQ(told.Outcome, outcome) << reply.Text;
        EXPECT_EQ(told.FirstUs, firstMs < 0 ? -1 : 1000 * firstMs) << reply.Text;
        EXPECT_EQ(told.LastUs, lastMs < 0 ? -1 : 1000 * lastMs) << reply.Text;
        EXPECT_EQ(told.Echo, reply.Text.starts_with('$'));
        EXPECT_EQ(std::tuple(told.Utc, told.Port, told.Baud), std::tuple(begun, 1, 9600));
    }
    ASSERT_EQ(heard.All.size(), std::size(cases));
}

TEST_F(LineTest, ListenersAreToldOfWhatNobodyAwaited) {
    HeardTraffic heard;
    TestLine.Listeners.push_back(&heard);
    Test.Port().Receive({"#01\r"});
    Test.Port().Queue = {{"!01\r"}, {"!02\r"}};
    Test.Port().OutputsUntilFailure = 2;
    TestLine.SendCommand("$010", 0, 3); // a calibration does not wait for the reply
    TestLine.Exchange("$011", 0, 3, 100);
    EXPECT_THROW(TestLine.Exchange("$012", 0, 3, 100), RuntimeFailure);
    const std::tuple<const char*, const char*, TrafficOutcome> expected[] = {
        {"", "#01\r", TrafficOutcome::Stray},
        {"$010\r", "!01\r", TrafficOutcome::Complete},
        {"$011\r", "!02\r", TrafficOutcome::Complete},
        {"$012\r", "", TrafficOutcome::Lost}};
    ASSERT_EQ(heard.All.size(), std::size(expected));
    for (std::size_t i = 0; i < heard.All.size(); ++i)
        EXPECT_EQ(std::tuple(heard.All[i].Sent, heard.All[i].Received, heard.All[i].Outcome), expected[i])
            << i;
}

// What comes late, character by character, is one line; a port that fails between two commands is told too.
TEST_F(LineTest, ListenersAreToldOfStraysByTheLine) {
    HeardTraffic heard;
    TestLine.Listeners.push_back(&heard);
    Test.Port().Queue = {{"", 0}, {"!03\r"}};
    TestLine.Exchange("$012", 0, 3, 100);
    Test.Port().Receive({"!0182\r!0", 50, 3});
    EXPECT_TRUE(TestLine.AwaitSilence());
    TestLine.Exchange("$032", 0, 3, 100);
    Test.Port().PortOpen(false);
    EXPECT_THROW(TestLine.Exchange("$042", 0, 3, 100), RuntimeFailure); // closed before: not lost
    const std::tuple<const char*, const char*, TrafficOutcome> expected[] = {
        {"$012\r", "", TrafficOutcome::Silent},
        {"", "!0182\r", TrafficOutcome::Stray},
        {"", "!0", TrafficOutcome::Stray},
        {"$032\r", "!03\r", TrafficOutcome::Complete}};
    ASSERT_EQ(heard.All.size(), std::size(expected));
    for (std::size_t i = 0; i < heard.All.size(); ++i)
        EXPECT_EQ(std::tuple(heard.All[i].Sent, heard.All[i].Received, heard.All[i].Outcome), expected[i])
            << i;
}

} // namespace
} // namespace kavro
