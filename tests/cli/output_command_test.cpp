#include "cli/captured.h"
#include "cli/output_command.h"

namespace kavro {
namespace {

// The demo line, and what it hears.
struct OutputSession : SimulatedSession {
    OutputSession() : SimulatedSession(DemoLine()) {
        Line.Log = [this](const LineEvent& event) { Heard.push_back(event.Command); };
    }

    Captured Drive(std::int16_t address, const std::vector<OutputChange>& changes) {
        return Capture(
            [&] { return DriveOutputs(Session, ContactOf(Session, address, {}), changes, false); });
    }

    Lines Heard;
};

TEST(OutputCommand, SendsWhatThePanelsSendAndPrintsTheReplies) {
    struct Case {
        std::int16_t Address;
        std::vector<OutputChange> Changes;
        const char* Printed;
        int Exit = ExitSuccess;
    };
    const Case cases[] = {
        {8,
         {{"", "12.5"}, {"", "4"}, {"", "+20"}},
         "#08+053.13 -> >\noutput: 4.000 mA -> 12.501 mA\n"
         "#08+000.00 -> >\noutput: 12.501 mA -> 4.000 mA\n"
         "#08+100.00 -> >\noutput: 4.000 mA -> 20.000 mA\n"},
        {9,
         {{"a", "+7.25"}, {"C", "-10"}, {"D", "-0.0004"}},
         "#09A+07.250 -> >\noutput A: +0.000 V -> +7.250 V\n"
         "#09C-10.000 -> >\noutput C: +0.000 V -> -10.000 V\n"
         "#09D+00.000 -> >\noutput D: +0.000 V -> +0.000 V\n"},
        {10,
         {{"7", "on"}, {"0", "OFF"}, {"All", "On"}, {"all", "off"}},
         "@0ASO071 -> !0A\noutput 7: off -> on\n@0ASO000 -> !0A\noutput 0: off -> off\n"
         "@0ADO00FF -> !0A\noutput all: 0080 -> 00FF\n@0ADO0000 -> !0A\noutput all: 00FF -> 0000\n"},
        {12,
         {{"15", "1"}, {"all", "0F05"}},
         "@0CSO0F1 -> !0C\noutput 15: off -> on\n@0CDO0F05 -> !0C\noutput all: 8F05 -> 0F05\n"},
        {15,
         {{"B7", "on"}, {"cl0", "off"}, {"all", "003c05"}},
         "@0FSO0F1 -> !0F\noutput B7: off -> on\n@0FSO000 -> !0F\noutput CL0: on -> off\n"
         "@0FDO003C05 -> !0F\noutput all: 00BC04 -> 003C05\n"},
        {2,
         {{"1", "on"}, {"0", "on"}, {"all", "02"}},
         "@02DO02 -> !02\noutput 1: off -> on\n@02DO03 -> !02\noutput 0: off -> on\n"
         "@02DO02 -> !02\noutput all: 03 -> 02\n"},
        {1, {{"all", "off"}}, "@01DO00 -> ?01\noutput all: 02 -> 02\n", ExitNotAccepted}};
    for (const auto& [address, changes, printed, exit] : cases) {
        const Captured driven = OutputSession().Drive(address, changes);
        EXPECT_EQ(std::tuple(driven.Exit, driven.Out), std::tuple(exit, printed)) << driven.Err;
    }
}

TEST(OutputCommand, WrongUseDrivesNothing) {
    const std::tuple<std::int16_t, OutputChange, const char*> cases[] = {
        {8, {"", "3.9"}, "'3.9' is not possible; give 4 to 20 mA"},
        {8, {"", "12,5"}, "decimal point"},
        {8, {"", "nan"}, "4 to 20 mA"},
        {8, {"A", "5"}, "has one output"},
        {9, {"E", "1"}, "the outputs are A, B, C, D."},
        {9, {"", "1"}, "Give OUTPUT=VALUE"},
        {9, {"A", "10.01"}, "-10 to 10 V"},
        {10, {"8", "on"}, "no output '8'"},
        {10, {"7", "yes"}, "give on or off"},
        {10, {"all", "0100"}, "4 hexadecimal digits, at most 00FF"},
        {15, {"A3", "on"}, "B7, CL0, CL1, CL2, CL3, all."},
        {2, {"2", "on"}, "the outputs are 0, 1, all."},
        {11, {"0", "on"}, "The module 8420 has no outputs"}};
    for (const auto& [address, change, piece] : cases) {
        OutputSession demo;
        const Captured driven = demo.Drive(address, {change});
        EXPECT_EQ(std::tuple(driven.Exit, driven.Out), std::tuple(ExitWrongUse, "")) << piece;
        EXPECT_TRUE(Contains(driven.Err, piece));
        for (const std::string& command : demo.Heard)
            EXPECT_TRUE(command.front() != '#' && !Contains(command, "DO") && !Contains(command, "SO"));
    }
    OutputSession second;
    EXPECT_EQ(second.Drive(10, {{"1", "on"}, {"8", "on"}}).Exit, ExitWrongUse);
    EXPECT_EQ(std::ranges::count(second.Heard, "@0ASO011"), 0) << "the first change is not driven either";
}

TEST(OutputCommand, WhatTheModuleDoesNotAnswerHasAnExitCode) {
    const std::tuple<std::int16_t, const char*, const char*, const char*> cases[] = {
        {10, "@0ASO",
         "@0ASO011 -> (no reply)\noutput 1: off -> off\n@0ADO00FF -> !0A\noutput all: 0000 -> 00FF\n",
         "did not accept 1 of 2 commands."},
        {2, "@02DI",
         "@02DI -> (no reply)\noutput 1: (not told) -> (not told)\n"
         "@02DO03 -> !02\noutput all: (not told) -> (not told)\n",
         "did not accept 1 of 2 commands."},
        {15, "$0F6", "", "does not tell which of its ports"}};
    for (const auto& [address, at, out, told] : cases) {
        OutputSession demo;
        demo.Line.ModuleAt(address).CommandFaults = [at = std::string(at)](std::string_view command) {
            return Faults{.Silent = command.starts_with(at)};
        };
        const Captured driven = demo.Drive(address, {{"1", "on"}, {"all", "on"}});
        EXPECT_EQ(std::tuple(driven.Exit, driven.Out), std::tuple(ExitNotAccepted, out)) << driven.Err;
        EXPECT_TRUE(Contains(driven.Err, told));
    }
    OutputSession told;
    told.Line.ModuleAt(8).CommandFaults = [](std::string_view command) {
        return Faults{.Silent = command == "$086"};
    };
    const Contact contact = ContactOf(told.Session, 8, {});
    EXPECT_EQ(Capture([&] {
                  return DriveOutputs(told.Session, contact, {{"", "20"}}, true);
              }).Out,
              "[\n  {\"command\": \"#08+100.00\", \"reply\": \">\", \"complete\": true, \"baud\": 9600, "
              "\"output\": null, \"unit\": \"mA\", \"old\": null, "
              "\"new\": null}\n]\n");
    OutputSession unplugged;
    unplugged.Line.Unplug();
    EXPECT_TRUE(Contains(unplugged.Drive(10, {{"1", "on"}}).Failure, "unplugged"));
}

} // namespace
} // namespace kavro
