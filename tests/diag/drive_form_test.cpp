#include "diag/ctr_diag_form.h"
#include "diag/dio_diag_form.h"
#include "diag/freq_diag_form.h"
#include "diag/multi_diag_form.h"
#include "diag/n46_diag_form.h"
#include "diag/panel_on_line.h"
#include "link/codes.h"
#include "link/text.h"
#include "sim/alarm_input_module.h"
#include "sim/counter_module.h"
#include "sim/digital_module.h"
#include "sim/port_module.h"

#include <QRegularExpression>

namespace kavro {
namespace {

constexpr const char* Stale = ". What is marked as stale was read before.";

// The states of a group's lines, from line 0 on: "0", "1", "?", each with "s" behind it when stale.
QString States(PanelForm& form, const QString& group) {
    QString states;
    for (int line = 0; auto* button = form.findChild<QAbstractButton*>(group + "_" + QString::number(line));
         ++line) {
        const QString name = button->accessibleName();
        states += name.contains("unknown") ? "?" : name.contains("on") ? "1" : "0";
        states += name.endsWith("stale") ? "s" : "";
    }
    return states;
}

void ExpectUsable(PanelForm& form, const QString& name, bool usable) {
    const QWidget& control = Find<QWidget>(form, name);
    EXPECT_EQ(control.isEnabled(), usable) << name.toStdString();
    EXPECT_EQ(control.toolTip().isEmpty(), usable) << name.toStdString();
}

void Refuse(SimulatedModule& module, char lead) {
    module.CommandFaults = [lead](std::string_view command) { return Faults{.Refuse = command[0] == lead}; };
}

TEST(DioDiagForm, AClickSwitchesAndTheModuleTells) {
    SimulatedPanel test({.Model = "8450  ", .Digital = {1}});
    auto& module = static_cast<DigitalModule&>(test.Module);
    module.HeldInputs = 0x41;
    DioDiagForm form(test.Session, test.Messages);
    EXPECT_EQ(Shown(form, "Polarity"), "Inputs inverted, outputs not inverted");
    EXPECT_EQ(States(form, "Input") + " " + States(form, "Output"), "1000001 00000000");
    test.Sent.clear();
    Click(form, "Output_3");
    EXPECT_EQ(States(form, "Output"), "00000000") << "the module has not told it yet";
    Tick(form);
    EXPECT_EQ(States(form, "Output"), "00010000");
    Click(form, "OutputAllOn");
    Tick(form);
    Click(form, "Output_7");
    Tick(form);
    EXPECT_EQ(States(form, "Output"), "11111110");
    EXPECT_EQ(Shown(form, "CommandState"), "Output 7 off: done.");
    EXPECT_EQ(test.Sent, (Lines{"@01SO031", "$016", "@01DO00FF", "$016", "@01SO070", "$016"}));
    Refuse(module, '@');
    Click(form, "OutputAllOff");
    Tick(form);
    EXPECT_EQ(States(form, "Output"), "11111110");
    EXPECT_EQ(Shown(form, "CommandState"), "\u26a0 All outputs off failed: refused by the module.");
    EXPECT_EQ(test.Messages.Shown, ShownMessages{});
}

TEST(DioDiagForm, KeepsTheLastStatesAsStale) {
    SimulatedPanel test({.Model = "8490  "});
    static_cast<DigitalModule&>(test.Module).HeldInputs = 0x8;
    test.Module.OwnFaults.Silent = true;
    DioDiagForm form(test.Session, test.Messages);
    EXPECT_EQ(States(form, "Input"), "????");
    test.Module.OwnFaults = {};
    Tick(form);
    EXPECT_EQ(States(form, "Input"), "0001");
    EXPECT_EQ(Shown(form, "PollState"), "Live");
    Refuse(test.Module, '$');
    Tick(form);
    EXPECT_EQ(States(form, "Input") + " " + States(form, "Output"), "0s0s0s1s 0s0s0s0s0s0s0s0s");
    EXPECT_EQ(Shown(form, "PollState"), QString("\u26a0 States: refused by the module") + Stale);
    test.Module.CommandFaults = {};
    Tick(form);
    test.Line.Unplug();
    Click(form, "Output_1");
    EXPECT_EQ(States(form, "Input"), "0s0s0s1s");
    Click(form, "Output_1");
    EXPECT_EQ(Shown(form, "CommandState"), "\u26a0 Output 1 on failed: the port has failed.");
    EXPECT_EQ(test.Messages.Shown.size(), 1U);
}

TEST(N46DiagForm, LinesFollowTheDirectionOfTheirPort) {
    SimulatedPanel test({.Model = "8460  "});
    auto& module = static_cast<PortModule&>(test.Module);
    module.Directions = 0x05; // A and CH are outputs
    module.HeldInputs = 0x00810F;
    module.Commanded = 0x010000;
    test.Module.OwnFaults.Silent = true;
    N46DiagForm form(test.Session, test.Messages);
    EXPECT_EQ(test.Sent, (Lines{"$01F", "$016"})) << "one time-out a tick";
    ExpectUsable(form, "PortA_0", false);
    test.Module.OwnFaults = {};
    Tick(form);
    const auto states = [&] {
        return States(form, "PortA") + " " + States(form, "PortB") + " " + States(form, "PortCH");
    };
    EXPECT_EQ(states(), "10000000 10000001 0000");
    for (const char* name : {"PortA_7", "PortAAllOn", "PortCH_3", "AllOn"})
        ExpectUsable(form, name, true);
    for (const char* name : {"PortB_0", "PortBAllOff", "PortCL_0"})
        ExpectUsable(form, name, false);
    test.Sent.clear();
    Click(form, "PortCH_2");
    Tick(form);
    Click(form, "PortAAllOff");
    Tick(form);
    EXPECT_EQ(states(), "00000000 10000001 0010");
    EXPECT_EQ(test.Sent, (Lines{"@01SO061", "$018", "$018", "@01DO00814F", "$018"}));
    Click(form, "AllOn");
    Tick(form);
    EXPECT_EQ(states(), "11111111 10000001 1111");
}

TEST(CtrDiagForm, ShowsAndDrivesBothCounters) {
    SimulatedPanel test({.Model = "8510  ", .InputRange = 80});
    auto& module = static_cast<CounterModule&>(test.Module);
    module.Counters[0] = {.InitialCount = 7, .Count = 4294967295U, .Overflow = true};
    module.Counters[1] = {.AlarmEnabled = true, .AlarmLimit = 5, .Count = 5};
    CtrDiagForm form(test.Session, test.Messages);
    Tick(form);
    const auto shown = [&](const QString& number) {
        return Shown(form, "Count_" + number) + ", " + Shown(form, "Started_" + number) + ", " +
               Shown(form, "Overflow_" + number) + ", " + Shown(form, "Alarm_" + number);
    };
    EXPECT_EQ(shown("0"), "4294967295, Stopped, \u26a0 Yes, Disabled");
    EXPECT_EQ(shown("1"), "5, Stopped, No, \u26a0 Active");
    test.Sent.clear();
    for (const char* button : {"Clear_0", "Start_1", "Start_0", "Stop_1"})
        Click(form, button);
    EXPECT_EQ(test.Sent, (Lines{"$0160", "$01511", "$01501", "$01510"}));
    Tick(form);
    EXPECT_EQ(shown("0").section(", ", 1), "Counting, No, Disabled");
    test.Module.CommandFaults = [](auto command) { return Faults{.Silent = command == "$017"}; };
    Tick(form);
    EXPECT_EQ(shown("1").section(", ", 1), "Stopped, No (stale), \u26a0 Active (stale)");
    EXPECT_EQ(Shown(form, "PollState"), QString("\u26a0 Overflow: no reply") + Stale);
}

TEST(FreqDiagForm, ShowsBothFrequencies) {
    ScriptedPanel test({.Model = "8510  ", .InputRange = 81});
    test.Answer({"!01A1", ">000003E8", ">FFFFFFFF"});
    FreqDiagForm form(test.Session, test.Messages);
    while (form.Busy())
        QApplication::processEvents();
    EXPECT_EQ(test.Sent(), (Lines{"$01F", "#010", "#011"}));
    EXPECT_EQ(Shown(form, "Frequency_0") + Shown(form, "Frequency_1"), "1000 Hz4294967295 Hz");
}

TEST(MultiDiagForm, OutputsBelongToTheAlarmUnlessItIsDisabled) {
    SimulatedPanel test({.Model = "8220  ", .InputRange = 8});
    auto& module = static_cast<AlarmInputModule&>(test.Module);
    module.Settings.TypeCode = 8;
    module.LowLimit = -1.5;
    module.HighLimit = -20; // always active
    module.HeldInputs = 1;
    MultiDiagForm form(test.Session, test.Messages);
    Tick(form);
    EXPECT_TRUE(QRegularExpression("^[+-]\\d+\\.\\d{4}$").match(Shown(form, "Reading_0")).hasMatch());
    EXPECT_EQ(Shown(form, "LowAlarm") + Shown(form, "ActiveAlarms"), "-01.500 V-");
    EXPECT_EQ(States(form, "Input"), "1");
    test.Sent.clear();
    Click(form, "Output_1");
    Tick(form);
    EXPECT_EQ(States(form, "Output"), "01");
    EXPECT_EQ(test.Sent, (Lines{"@01DI", "@01DO02", "#01", "@01DI"}));
    module.LowLimit = -10.5;
    for (const int mode : {AlarmDisabled, AlarmMomentary, AlarmLatched}) {
        module.AlarmMode = mode;
        Tick(form);
        EXPECT_EQ(Shown(form, "AlarmMode").toStdString(),
                  Trim(AlarmModeName(static_cast<std::int16_t>(mode))));
        EXPECT_EQ(Shown(form, "ActiveAlarms"), mode == AlarmDisabled ? "-" : "\u26a0 High");
        ExpectUsable(form, "Output_0", mode == AlarmDisabled);
        ExpectUsable(form, "ClearBtn", mode == AlarmLatched);
    }
    module.HighLimit = 11;
    Click(form, "ClearBtn");
    Tick(form);
    EXPECT_EQ(Shown(form, "ActiveAlarms"), "None");
    test.Module.OwnFaults.Silent = true;
    test.Sent.clear();
    Tick(form);
    EXPECT_EQ(test.Sent, Lines{"#01"});
    EXPECT_EQ(Shown(form, "Reading_0") + " " + Shown(form, "AlarmMode"), "*error* Latch (stale)");
}

} // namespace
} // namespace kavro
