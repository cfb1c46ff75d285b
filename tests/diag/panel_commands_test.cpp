#include "diag/alarm_panel.h"
#include "diag/counter_panel.h"
#include "diag/digital_panel.h"
#include "diag/port_panel.h"
#include "link/text.h"
#include "support/test_session.h"

#include <gtest/gtest.h>

#include <functional>

namespace kavro {
namespace {

using Steps = std::vector<std::pair<std::string, std::string>>; // command and its good reply

/// What was read, as a text.
struct Told {
    std::string Text;
    Told(unsigned word) : Text(ToHex(static_cast<std::int32_t>(word), 6)) {}
    Told(const DigitalStates& states) : Text(Told(states.Outputs).Text + " " + Told(states.Inputs).Text) {}
    Told(const CounterFlags& flags) : Text(std::to_string(flags[0]) + std::to_string(flags[1])) {}
    Told(const CounterAlarms& alarms) : Text(Told(alarms.Enabled).Text + " " + Told(alarms.Active).Text) {}
    Told(const AlarmStates& states)
        : Text(std::to_string(states.Mode) + ActiveAlarmsText(states) + std::to_string(states.Input)) {}
    Told(const std::string& text) : Text(text) {}
};

/// Runs a command and tells the value afterwards; `Before` is what stays after a failure.
struct Run {
    using Tell = Answer (*)(Session& session);
    Run(Tell tell) : Do([tell](Session& session, std::string&) { return tell(session); }) {}
    template <class Value>
    Run(Answer (*read)(Session&, int, Value&), const Value& before)
        : Do([read, value = before](Session& session, std::string& text) mutable {
              const Answer answer = read(session, 0, value);
              text = Told(value).Text;
              return answer;
          }),
          Before(Told(before).Text) {}

    std::function<Answer(Session& session, std::string& text)> Do;
    std::string Before;
};

/// The module is entry 0 at address 10.
struct PanelCommand {
    const char* Model;
    kavro::Run Run;
    kavro::Steps Steps;
    std::string Values = {};
};

const DigitalStates Digital = {0x5555, 0x5555};
const CounterFlags Flags = {true, true};
const CounterAlarms Alarms = {Flags, Flags};
const AlarmStates Latched = {AlarmLatched, 3, true};
const std::string Limit = "as it was";

Answer ReadCounter1(Session& session, int index, unsigned& value) {
    return ReadCounter(session, index, 1, value);
}
template <bool High>
Answer ReadLimit(Session& session, int index, std::string& text) {
    return ReadAlarmLimit(session, index, High, text);
}

const PanelCommand Commands[] = {
    {"8410", {ReadDigitalStates, Digital}, {{"$0A6", "!FFA5FF3C"}}, "0000A5 00003C"},
    {"8420", {ReadDigitalStates, Digital}, {{"$0A6", "!FFFF8001"}}, "000000 008001"},
    {"8450", {ReadDigitalStates, Digital}, {{"$0A6", "!0081FFFF"}}, "000081 00007F"},
    {"8430", {[](Session& s) { return SwitchOutput(s, 0, 15, true); }}, {{"@0ASO0F1", "!0A"}}},
    {"8460", {[](Session& s) { return SwitchOutput(s, 0, 23, false); }}, {{"@0ASO170", "!0A"}}},
    {"8430", {[](Session& s) { return SwitchAllOutputs(s, 0, true); }}, {{"@0ADOFFFF", "!0A"}}},
    {"8470", {[](Session& s) { return SwitchAllOutputs(s, 0, true); }}, {{"@0ADO000F", "!0A"}}},
    {"8470", {[](Session& s) { return SwitchAllOutputs(s, 0, false); }}, {{"@0ADO0000", "!0A"}}},
    {"8460", {ReadPortDirections, 0x55U}, {{"$0A6", "!0900"}}, "000009"},
    {"8460", {ReadPortLevels, 0x55U}, {{"$0A8", "!123C05"}}, "123C05"},
    {"8460",
     {[](Session& s) { return SwitchPortLines(s, 0, DigitalPorts[2].Word(), true); }},
     {{"$0A8", "!123C05"}, {"@0ADO123CF5", "!0A"}}},
    {"8460",
     {[](Session& s) { return SwitchPortLines(s, 0, DigitalPorts[0].Word(), false); }},
     {{"$0A8", "!123C05"}, {"@0ADO003C05", "!0A"}}},
    {"8510", {ReadCounter1, 7U}, {{"#0A1", ">00FFFFFF"}}, "FFFFFF"},
    {"8510", {ReadCounterStarted, Flags}, {{"$0A5", "!0A01"}}, "01"},
    {"8510", {ReadCounterOverflow, Flags}, {{"$0A7", "!0A10"}}, "10"},
    {"8510", {ReadCounterAlarms, Alarms}, {{"@0ADI", "!0A1002"}}, "10 01"},
    {"8510", {[](Session& s) { return StartCounter(s, 0, 1, true); }}, {{"$0A511", "!0A"}}},
    {"8510", {[](Session& s) { return StartCounter(s, 0, 0, false); }}, {{"$0A500", "!0A"}}},
    {"8510", {[](Session& s) { return ClearCounter(s, 0, 1); }}, {{"$0A61", "!0A"}}},
    {"8240", {ReadAlarmStates, Latched}, {{"@0ADI", "!0A10200"}}, "1High0"},
    {"8240", {ReadAlarmStates, Latched}, {{"@0ADI", "!0A00301"}}, "0-1"},
    {"8240",
     {[](Session& s) { return SwitchAlarmOutput(s, 0, 1, true); }},
     {{"@0ADI", "!0A00101"}, {"@0ADO03", "!0A"}}},
    {"8240",
     {[](Session& s) { return SwitchAlarmOutput(s, 0, 0, false); }},
     {{"@0ADI", "!0A00301"}, {"@0ADO02", "!0A"}}},
    {"8240", {[](Session& s) { return ClearAlarms(s, 0); }}, {{"@0ACA", "!0A"}}},
    {"8220", {ReadLimit<false>, Limit}, {{"@0ARL", "!0A-01.500"}}, "-01.500 V"},
    {"8220", {ReadLimit<true>, Limit}, {{"@0ARH", "!0A+09.750"}}, "+09.750 V"},
};

// The commands sent when the replies come, and what is answered and read.
void ExpectRun(const PanelCommand& command, const Lines& replies, Answer answer, const std::string& values,
               std::int16_t checksum = 0) {
    ScriptedSession test;
    test.Session.ScanIndex = -1;
    test.Session.ModuleTable[0] = {.Address = 10,
                                   .Model = FixedText(command.Model, 6),
                                   .BaudCode = 3,
                                   .InputRange = 8,
                                   .Checksum = checksum};
    Lines sent = {"COM1 settings 9600,n,8,1"};
    for (std::size_t i = 0; i < replies.size(); ++i) {
        test.Port().Queue.push_back({replies[i]});
        const std::string& text = command.Steps[i].first;
        sent.push_back("COM1 9600 " + text + (checksum == 1 ? ChecksumOf(text) : ""));
    }
    std::string text;
    EXPECT_STREQ(AnswerText(command.Run.Do(test.Session, text)), AnswerText(answer));
    EXPECT_EQ(text, values);
    EXPECT_EQ(test.Log, sent);
}

TEST(PanelCommands, GoodRepliesAndEachFaultAtEachStep) {
    for (const PanelCommand& command : Commands) {
        SCOPED_TRACE(command.Steps.back().first);
        Lines replies;
        for (const auto& [text, reply] : command.Steps) {
            const auto expectFault = [&](const std::string& fault, Answer answer, std::int16_t checksum = 0) {
                SCOPED_TRACE(text + " gets " + fault);
                Lines faulty = replies;
                for (std::string& good : faulty)
                    if (checksum == 1)
                        good = good.substr(0, good.size() - 1) + ChecksumOf(good.substr(0, good.size() - 1)) +
                               "\r";
                faulty.push_back(fault);
                ExpectRun(command, faulty, answer, command.Run.Before, checksum);
            };
            const bool limit = text.starts_with("@0AR"); // a number of any length
            expectFault("", Answer::NoReply);
            expectFault("?0A\r", Answer::Refused);
            expectFault(reply, Answer::Garbled); // its carriage return is missing
            expectFault((reply[0] == '!' ? ">" : "!") + reply.substr(1) + "\r", Answer::Garbled);
            expectFault(reply.substr(0, limit ? 3 : reply.size() - 1) + "\r", Answer::Garbled);
            expectFault(reply + "00\r", Answer::Garbled, 1); // wrong checksum
            if (!limit)
                expectFault(reply + "0\r", Answer::Garbled);
            if (reply.size() > 3)
                expectFault(reply.substr(0, limit ? 3 : reply.size() - 1) + "G\r", Answer::Garbled);
            if (reply.starts_with("!0A"))
                expectFault("!0B" + reply.substr(3) + "\r", Answer::Garbled);
            replies.push_back(reply + "\r");
        }
        ExpectRun(command, replies, Answer::Ok, command.Values);
    }
}

TEST(PanelCommands, ValuesThatNoModuleHas) {
    const PanelCommand commands[] = {
        {"8460", {ReadPortDirections, 0x55U}, {{"$0A6", "!1000"}}},
        {"8460", {ReadPortDirections, 0x55U}, {{"$0A6", "!0F01"}}},
        {"8510", {ReadCounterStarted, Flags}, {{"$0A5", "!0A02"}}},
        {"8510", {ReadCounterAlarms, Alarms}, {{"@0ADI", "!0A2000"}}},
        {"8240", {ReadAlarmStates, Latched}, {{"@0ADI", "!0A30000"}}},
    };
    for (const PanelCommand& command : commands)
        ExpectRun(command, {command.Steps[0].second + "\r"}, Answer::Garbled, command.Run.Before);
}

TEST(PanelCommands, PolarityInWords) {
    const auto text = [](const char* model, std::int16_t polarity) {
        return PolarityText({.Model = model, .Digital = {polarity}});
    };
    EXPECT_EQ(text("8410  ", 1), "Inputs inverted, outputs not inverted");
    EXPECT_EQ(text("8450  ", 2), "Inputs not inverted, outputs inverted");
    EXPECT_EQ(text("8420  ", 2), "Inputs not inverted");
    EXPECT_EQ(text("8430  ", 2), "Outputs inverted");
}

} // namespace
} // namespace kavro
