#include "diag/alarm_panel.h"
#include "diag/counter_panel.h"
#include "diag/digital_panel.h"
#include "diag/port_panel.h"
#include "support/test_session.h"

namespace kavro {
namespace {

/// Runs a command for entry 0.
using Run = std::function<Answer(Session& session)>;

// A read, which leaves the value alone when it fails.
template <auto Function, auto... Arguments, class Value>
Run Reads(const Value& expected) {
    return [expected](Session& session) {
        Value value{};
        const Answer answer = Function(session, 0, Arguments..., value);
        EXPECT_EQ(value == expected, answer == Answer::Ok);
        EXPECT_EQ(value == Value{}, answer != Answer::Ok);
        return answer;
    };
}

template <auto Function, auto... Arguments>
Answer Tells(Session& session) {
    return Function(session, 0, Arguments...);
}

struct Step {
    std::string Command, Good; ///< and its good reply
    int Times = 1;             ///< 2: asked until it is told twice alike
};

struct PanelCommand {
    const char* Model;
    kavro::Run Run;
    std::vector<Step> Steps;
    Lines Garbled = {}; ///< further replies to the first command that no such module gives
};

const PanelCommand Commands[] = {
    {"8410",
     Reads<ReadDigitalStates>(DigitalStates{0xA5, 0x3C}),
     {{"$0A6", "!00A5003C"}},
     {"!FFA5FF3C", "!01A5003C"}},
    {"8420", Reads<ReadDigitalStates>(DigitalStates{0, 0x8001}), {{"$0A6", "!00008001"}}, {"!FFFF800G"}},
    {"8430", Tells<SwitchOutput, 15, true>, {{"@0ASO0F1", "!0A"}}},
    {"8460", Tells<SwitchOutput, 23, false>, {{"@0ASO170", "!0A"}}},
    {"8430", Tells<SwitchAllOutputs, true>, {{"@0ADOFFFF", "!0A"}}},
    {"8470", Tells<SwitchAllOutputs, true>, {{"@0ADO000F", "!0A"}}},
    {"8460", Reads<ReadPortDirections>(9U), {{"$0A6", "!0900", 2}}, {"!1000", "!0F01"}},
    {"8460", Reads<ReadPortLevels>(0x123C05U), {{"$0A8", "!123C05"}}, {"!123C0G"}},
    {"8460", Tells<SwitchPortLines, 0xF0U, true>, {{"$0A8", "!123C05", 2}, {"@0ADO123CF5", "!0A"}}},
    {"8460", Tells<SwitchPortLines, 0xFF0000U, false>, {{"$0A8", "!123C05", 2}, {"@0ADO003C05", "!0A"}}},
    {"8510", Reads<ReadCounter, 1>(0xFFFFFFU), {{"#0A1", ">00FFFFFF"}}, {">00FFFFFG"}},
    {"8510", Reads<ReadCounterStarted>(CounterFlags{false, true}), {{"$0A5", "!0A01"}}, {"!0A02", "!0B01"}},
    {"8510", Reads<ReadCounterOverflow>(CounterFlags{true, false}), {{"$0A7", "!0A10"}}, {"!0A20"}},
    {"8510", Reads<ReadCounterAlarms>(CounterAlarms{{true}}), {{"@0ADI", "!0A1000"}}, {"!0A2000"}},
    {"8510", Reads<ReadCounterAlarms>(CounterAlarms{{}, {false, true}}), {{"@0ADI", "!0A0002"}}},
    {"8510", Tells<StartCounter, 1, true>, {{"$0A511", "!0A"}}},
    {"8510", Tells<ClearCounter, 1>, {{"$0A61", "!0A"}}, {"!0B"}},
    {"8240", Reads<ReadAlarmStates>(AlarmStates{1, 2, true}), {{"@0ADI", "!0A10201"}}, {"!0A30000"}},
    {"8240", Tells<SwitchAlarmOutput, 1, true>, {{"@0ADI", "!0A00101", 2}, {"@0ADO03", "!0A"}}},
    {"8240", Tells<SwitchAlarmOutput, 0, false>, {{"@0ADI", "!0A00301", 2}, {"@0ADO02", "!0A"}}},
    {"8240", Tells<ClearAlarms>, {{"@0ACA", "!0A"}}},
    {"8220", Reads<ReadAlarmLimit, false>(std::string("-01.500 V")), {{"@0ARL", "!0A-01.500"}}, {"!0A"}},
    {"8220", Reads<ReadAlarmLimit, true>(std::string("+09.750 V")), {{"@0ARH", "!0A+09.750"}}, {"!0AG"}}};

// The commands sent, and what is answered, when the first `good` steps go well and then this reply comes;
// what does not fit is asked for once more, and what changes something is not.
void ExpectRun(const PanelCommand& command, std::size_t good, const std::string& reply, Answer answer) {
    SCOPED_TRACE(reply);
    ScriptedSession test;
    test.Session.ScanIndex = -1;
    test.Session.ModuleTable[0] = {.Address = 10, .Model = command.Model, .BaudCode = 3, .InputRange = 8};
    test.Session.BelievedSince[10] = test.Session.Line.IncompleteCount;
    Lines sent = {"COM1 settings 9600,n,8,1"};
    const auto expect = [&](const Step& step, const std::string& told, int times) {
        for (int time = 0; time < times; ++time) {
            test.Port().Queue.push_back({told});
            sent.push_back("COM1 9600 " + step.Command);
        }
    };
    for (std::size_t i = 0; i < good; ++i)
        expect(command.Steps[i], command.Steps[i].Good + "\r", command.Steps[i].Times);
    if (good < command.Steps.size()) {
        const Step& step = command.Steps[good];
        expect(step, reply, 1);
        const bool repeated = answer == Answer::Garbled && step.Good != "!0A";
        if (repeated && !reply.ends_with('\r') &&
            step.Good.substr(1, 2) != "0A") // what follows has no address
            expect({"$0AM", ""}, "!0A" + std::string(command.Model) + "\r", 1);
        if (repeated)
            expect(step, reply, 1);
    }
    EXPECT_STREQ(AnswerText(command.Run(test.Session)), AnswerText(answer));
    EXPECT_EQ(test.Log, sent);
}

TEST(PanelCommands, GoodRepliesAndEachFaultAtEachStep) {
    for (const PanelCommand& command : Commands) {
        SCOPED_TRACE(command.Steps.back().Command);
        for (const std::string& reply : command.Garbled)
            ExpectRun(command, 0, reply + "\r", Answer::Garbled);
        for (std::size_t step = 0; step < command.Steps.size(); ++step) {
            const std::string& good = command.Steps[step].Good;
            ExpectRun(command, step, "", Answer::NoReply);
            ExpectRun(command, step, "?0A\r", Answer::Refused);
            ExpectRun(command, step, good, Answer::Garbled); // cut short, as a wrong checksum is
            ExpectRun(command, step, (good[0] == '!' ? ">" : "!") + good.substr(1) + "\r", Answer::Garbled);
            ExpectRun(command, step, good.substr(0, good.size() - 1) + "\r", Answer::Garbled);
            ExpectRun(command, step, good + "0\r", Answer::Garbled);
        }
        ExpectRun(command, command.Steps.size(), "", Answer::Ok);
    }
}

} // namespace
} // namespace kavro
