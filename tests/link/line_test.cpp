#include "link/runtime_failure.h"
#include "support/test_session.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

/// A line on COM1 that answers from a script.
class LineTest : public testing::Test {
protected:
    ScriptedSession Test;
    Line& TestLine = Test.Session.Line;

    std::int64_t Milliseconds() const { return Test.Time.GetTickCount(); }
};

TEST_F(LineTest, BaudRatesGoThroughSettingsOrTheDeviceControlBlock) {
    const std::pair<std::int16_t, const char*> cases[] = {
        {0, "COM1 settings 1200,n,8,1"}, {1, "COM1 settings 2400,n,8,1"},  {2, "COM1 settings 4800,n,8,1"},
        {3, "COM1 settings 9600,n,8,1"}, {4, "COM1 settings 19200,n,8,1"}, {5, "COM1 state 38400,n,8,1"},
        {6, "COM1 state 115200,n,8,1"},  {7, "COM1 state 57600,n,8,1"},    {8, "COM1 settings 9600,n,8,1"},
        {-2, "COM1 settings 9600,n,8,1"}};
    for (const auto& [code, call] : cases) {
        const std::int64_t start = Milliseconds();
        Test.Log.clear();
        TestLine.SetPortBaud(1, code, 2, 7, 2); // parity, data bits and stop bits never reach the wire
        TestLine.SetPortBaud(1, code, 0, 8, 0); // no change: no call, no pause
        EXPECT_EQ(Test.Log, Lines{call});
        EXPECT_EQ(TestLine.PortBaudCode[0], code);
        EXPECT_EQ(Milliseconds() - start, 1000);
    }
}

TEST_F(LineTest, EveryPortHasItsOwnBaudRate) {
    Test.Port(2).PortOpen(true);
    TestLine.SetPortBaud(1, 3, 0, 8, 0);
    TestLine.SetPortBaud(2, 3, 0, 8, 0);
    TestLine.SetPortBaud(1, 3, 0, 8, 0);
    EXPECT_EQ(Test.Log, (Lines{"COM2 open", "COM1 settings 9600,n,8,1", "COM2 settings 9600,n,8,1"}));
    EXPECT_EQ(Milliseconds(), 2000);
}

TEST_F(LineTest, ThereAreEightPorts) {
    for (const int port : {-1, 0, 9}) {
        EXPECT_THROW(TestLine.CommPort(port), RuntimeFailure);
        EXPECT_THROW(TestLine.SettingsOf(port), RuntimeFailure);
        EXPECT_THROW(TestLine.SetPortBaud(static_cast<std::int16_t>(port), 3, 0, 8, 0), RuntimeFailure);
    }
}

TEST_F(LineTest, AClosedPortFails) {
    Test.Port().PortOpen(false);
    EXPECT_THROW(TestLine.SendCommand("$012", 0, 3), RuntimeFailure);
    EXPECT_EQ(TestLine.PortBaudCode[0], -1) << "a baud rate that was not applied is not remembered";
    EXPECT_THROW(TestLine.ReceiveReply(TestLine.ReplyText, 0, 0, 100), RuntimeFailure);
}

TEST_F(LineTest, CommandLine) {
    const struct {
        const char* Command;
        std::int16_t Checksum;
        const char* Bytes;
    } cases[] = {{"$012", 0, "$012\r"},       {"$012", 1, "$012B7\r"},
                 {"  $012 ", 1, "$012B7\r"},  {"$01 2", 0, "$01 2\r"},
                 {"$012", -1, "$012\r"},      {"$012", 2, "$012\r"},
                 {"#0", 1, "#053\r"},         {"", 1, "00\r"},
                 {"~~~~~~", 1, "~~~~~~F4\r"}, {"\377\377", 1, "\377\377FE\r"},
                 {"@@@@", 1, "@@@@00\r"}};
    for (const auto& [command, checksum, bytes] : cases) {
        TestLine.SendCommand(command, checksum, 3);
        EXPECT_EQ(Test.Port().LastOutput, bytes);
    }
    EXPECT_EQ(Milliseconds(), 1000) << "only the first command changes the baud rate";
}

TEST_F(LineTest, ASumAbove16BitsIsAnErrorAndNothingIsSent) {
    TestLine.SendCommand(std::string(327, 'd'), 1, 3); // 32700
    EXPECT_EQ(Test.Port().LastOutput, std::string(327, 'd') + "BC\r");
    EXPECT_THROW(TestLine.SendCommand(std::string(328, 'd'), 1, 3), RuntimeFailure);
    EXPECT_EQ(Test.Log.size(), 2U);
    EXPECT_EQ(ChecksumOf(std::string(128, '\xFF') + std::string(1, '\x7F')), "FF"); // 32767
    EXPECT_THROW(ChecksumOf(std::string(128, '\xFF') + std::string(1, '\x80')), RuntimeFailure);
}

TEST_F(LineTest, WhatCameBeforeTheCommandIsDiscarded) {
    Test.Port().Receive({"!99late\r"});
    Test.Port().Replies["9600 $012"] = {"!01400600\r"};
    EXPECT_TRUE(TestLine.Exchange("$012", 0, 3, 100));
    EXPECT_EQ(TestLine.CommandText, "$012");
    EXPECT_EQ(TestLine.ReplyText, "!01400600");
    EXPECT_EQ(TestLine.ReplyStatus, -1);
    EXPECT_TRUE(TestLine.ReplyIs('!'));
    EXPECT_FALSE(TestLine.ReplyIs('>'));
}

TEST_F(LineTest, TimeOutsRunFromTheLastCharacter) {
    const struct {
        ScriptedReply Incoming;
        int DelayMs = 0, TimeoutMs = 100;
        bool Complete = false;
        const char* Reply = "";
        std::int64_t Milliseconds = 0;
    } cases[] = {{{""}, 0, 100, false, "", 100},  // silence
                 {{""}, 50, 100, false, "", 150}, // the time-out begins after the pause
                 {{""}, 0, 0, false, "", 0},
                 {{"!01\r"}, 0, 100, true, "!01", 0}, // acted on when its carriage return arrives
                 {{"!01\r", 99}, 0, 100, true, "!01", 99},
                 {{"!01\r", 100}, 0, 100, true, "!01", 100}, // just as the time is up: it is there
                 {{"!01\r", 101}, 0, 100, false, "", 100},
                 {{"!01\r", 250}, 200, 100, true, "!01", 250},
                 {{"!01\r", 20}, 200, 100, true, "!01", 200},           // the pause is kept in any case
                 {{"!01\r", 90, 99}, 0, 100, true, "!01", 90 + 3 * 99}, // slow characters are never cut off
                 {{"!01", 90, 99}, 0, 100, false, "!01", 90 + 2 * 99 + 100},
                 {{"!01\r", 0, 101}, 0, 100, false, "!", 100},
                 {{"!01\r>02\r"}, 0, 100, true, "!01", 0},
                 {{"\r", 5}, 0, 100, true, "", 5},
                 {{"!01\n \xE9\r"}, 0, 100, true, "!01\n \xE9", 0}};
    for (const auto& [incoming, delay, timeout, complete, expected, milliseconds] : cases) {
        ScriptedSession test;
        test.Port().Receive(incoming);
        std::string reply = "left over";
        EXPECT_EQ(test.Session.Line.ReceiveReply(reply, 0, delay, timeout), complete);
        EXPECT_EQ(reply, expected);
        EXPECT_EQ(test.Time.Microseconds(), milliseconds * 1000) << incoming.Text << incoming.DelayMs;
    }
}

TEST_F(LineTest, ReplyChecksum) {
    const struct {
        const char* Incoming;
        bool Good;
        const char* Reply;
    } cases[] = {
        {"!0182", true, "!01"},
        {"!0183", false, "!0183"},
        {"!01082", false, "!01082"},
        {"!01", false, "!01"},
        {"!01ZZ", false, "!01ZZ"},
        {"!01 8", false, "!01 8"},
        {">+1.5EF", false, ">+1.5EF"},
        {"z~F8", true, "z~"},
        {"z~f8", true, "z~"},
        {"\377\377FE", true, "\377\377"},
        {"00", true, ""},
        {"01", false, "01"},
        {"", false, ""},
        {"0", true, ""},
        {"1", false, "1"},
        {"!", false, "!"},
    };
    for (const auto& [incoming, good, expected] : cases) {
        Test.Port().Receive({std::string(incoming) + "\r"});
        std::string reply;
        EXPECT_EQ(TestLine.ReceiveReply(reply, 1, 0, 100), good) << incoming;
        EXPECT_EQ(reply, expected);
    }
    Test.Port().Receive({"!0182\r"}); // not asked for: stays part of the reply
    EXPECT_TRUE(TestLine.ReceiveReply(TestLine.ReplyText, 0, 0, 100));
    EXPECT_EQ(TestLine.ReplyText, "!0182");
    Test.Port().Receive({std::string(328, 'd') + "00\r"});
    EXPECT_THROW(TestLine.ReceiveReply(TestLine.ReplyText, 1, 0, 100), RuntimeFailure);
}

TEST_F(LineTest, FailedExchangesAreNoReplyOfAnyClass) {
    EXPECT_FALSE(TestLine.Exchange("$012", 0, 3, 100));
    EXPECT_EQ(TestLine.ReplyText, "");
    Test.Port().Queue = {{"!0183\r"}, {"\r"}};
    EXPECT_FALSE(TestLine.Exchange("$012", 1, 3, 100));
    EXPECT_EQ(TestLine.ReplyStatus, 0);
    EXPECT_FALSE(TestLine.ReplyIs('!'));
    EXPECT_TRUE(TestLine.Exchange("$012", 0, 3, 100));
    EXPECT_FALSE(TestLine.ReplyIs('!')) << "an empty reply has no class";
}

TEST_F(LineTest, ALineThatNeverFallsSilentEnds) {
    Test.Port().Receive({std::string(40000, '!')});
    EXPECT_THROW(TestLine.ReceiveReply(TestLine.ReplyText, 0, 0, 100), RuntimeFailure);
    EXPECT_EQ(TestLine.ReplyText.size(), 32767U);
}

} // namespace
} // namespace kavro
