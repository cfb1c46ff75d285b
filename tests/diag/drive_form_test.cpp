#include "diag/ctr_diag_form.h"
#include "diag/dio_diag_form.h"
#include "diag/freq_diag_form.h"
#include "diag/multi_diag_form.h"
#include "diag/n46_diag_form.h"
#include "diag/panel_on_line.h"
#include "sim/alarm_input_module.h"
#include "sim/counter_module.h"
#include "sim/digital_module.h"
#include "sim/port_module.h"

#include <QRegularExpression>

namespace kavro {
namespace {

constexpr const char* Stale = ". What is marked as stale was read before.";

// The states of groups' lines, from line 0 on: "0", "1", "?", each with "s" behind it when stale.
QString States(PanelForm& form, const QStringList& groups) {
    QStringList states;
    for (const QString& group : groups) {
        QString& lines = states.emplace_back();
        for (int line = 0;
             auto* button = form.findChild<QAbstractButton*>(group + "_" + QString::number(line)); ++line) {
            const QString name = button->accessibleName();
            lines += name.contains("unknown") ? "?" : name.contains("on") ? "1" : "0";
            lines += name.endsWith("stale") ? "s" : "";
        }
    }
    return states.join(' ');
}

// Each click with a tick after it.
void ClickEach(PanelForm& form, const QStringList& buttons) {
    for (const QString& button : buttons) {
        Click(form, button);
        Tick(form);
    }
}

TEST(DioDiagForm, AClickSwitchesAndTheModuleTells) {
    const QStringList groups = {"Input", "Output"};
    SimulatedPanel test({.Model = "8450  ", .Digital = {1}});
    static_cast<DigitalModule&>(test.Module).HeldInputs = 0x41;
    test.Module.OwnFaults.Silent = true;
    DioDiagForm form(test.Session, test.Messages);
    EXPECT_EQ(Shown(form, "Polarity"), "Inputs inverted, outputs not inverted");
    EXPECT_EQ(States(form, groups), "??????? ????????");
    test.Module.OwnFaults = {};
    Tick(form);
    EXPECT_EQ(States(form, groups), "??????? ????????") << "a late reply may still come";
    test.Time.Sleep(500);
    Tick(form);
    EXPECT_EQ(States(form, groups), "1000001 00000000");
    test.Sent.clear();
    Click(form, "Output_3");
    EXPECT_EQ(States(form, groups), "1000001 00000000") << "the module has not told it yet";
    Tick(form);
    EXPECT_EQ(States(form, groups), "1000001 00010000");
    ClickEach(form, {"OutputAllOn", "Output_7"});
    EXPECT_EQ(Shown(form, "CommandState") + Shown(form, "PollState"), "Output 7 off: done.Live");
    EXPECT_EQ(test.Sent, (Lines{"@01SO031", "$016", "@01DO00FF", "$016", "@01SO070", "$016"}));
    test.Module.OwnFaults.Refuse = true;
    ClickEach(form, {"OutputAllOff"});
    EXPECT_EQ(States(form, groups), "1s0s0s0s0s0s1s 1s1s1s1s1s1s1s0s");
    EXPECT_EQ(Shown(form, "CommandState"), "\u26a0 All outputs off failed: refused by the module.");
    EXPECT_EQ(Shown(form, "PollState"), QString("\u26a0 States: refused by the module") + Stale);
    EXPECT_EQ(test.Messages.Shown, ShownMessages{});
    test.Line.Unplug();
    Click(form, "Output_1");
    Click(form, "Output_1");
    EXPECT_EQ(Shown(form, "CommandState"), "\u26a0 Output 1 off failed: the port has failed.");
    EXPECT_EQ(test.Messages.Shown.size(), 1U);
}

TEST(N46DiagForm, LinesFollowTheDirectionOfTheirPort) {
    const QStringList ports = {"PortA", "PortB", "PortCH"};
    SimulatedPanel test({.Model = "8460  "});
    auto& module = static_cast<PortModule&>(test.Module);
    module.Directions = 0x05; // A and CH are outputs
    module.HeldInputs = 0x00810F;
    module.Commanded = 0x010000;
    test.Module.OwnFaults.Silent = true;
    N46DiagForm form(test.Session, test.Messages);
    EXPECT_EQ(test.Sent, Lines{"$01F"}) << "one time-out, and then the line must fall silent";
    ExpectUsable(form, {"PortA_0"}, false);
    test.Module.OwnFaults = {};
    test.Time.Sleep(500);
    Tick(form);
    EXPECT_EQ(States(form, ports), "10000000 10000001 0000");
    ExpectUsable(form, {"PortA_7", "PortAAllOn", "PortCH_3", "AllOn"}, true);
    ExpectUsable(form, {"PortB_0", "PortBAllOff", "PortCL_0"}, false);
    test.Sent.clear();
    ClickEach(form, {"PortCH_2", "PortAAllOff"});
    EXPECT_EQ(States(form, ports), "00000000 10000001 0010");
    ClickEach(form, {"AllOn"});
    EXPECT_EQ(States(form, ports), "11111111 10000001 1111");
    std::erase_if(test.Sent, [](const std::string& command) { return !command.starts_with("@01DO"); });
    EXPECT_EQ(test.Sent, (Lines{"@01DO00814F", "@01DOFFFFFF"}));
}

TEST(CtrDiagForm, ShowsAndDrivesBothCounters) { // the frequencies, too, are read like counts
    SimulatedPanel test({.Model = "8510  ", .InputRange = 80});
    auto& module = static_cast<CounterModule&>(test.Module);
    module.Counters[0] = {.InitialCount = 7, .Count = 4294967295U, .Overflow = true};
    module.Counters[1] = {.AlarmEnabled = true, .AlarmLimit = 5, .Count = 5};
    CtrDiagForm form(test.Session, test.Messages);
    Tick(form);
    const auto shown = [&](const QString& number) {
        QStringList texts;
        for (const char* name : {"Count_", "Started_", "Overflow_", "Alarm_"})
            texts << Shown(form, name + number);
        return texts.join(", ");
    };
    EXPECT_EQ(shown("0"), "4294967295, Stopped, \u26a0 Yes, Disabled");
    EXPECT_EQ(shown("1"), "5, Stopped, No, \u26a0 Active");
    test.Sent.clear();
    for (const char* button : {"Clear_0", "Start_1", "Start_0", "Stop_1"})
        Click(form, button);
    EXPECT_EQ(test.Sent, (Lines{"$0160", "$01511", "$01501", "$01510"}));
    Tick(form);
    EXPECT_EQ(Shown(form, "Started_0") + Shown(form, "Overflow_0"), "CountingNo");
    test.Module.CommandFaults = [](auto command) { return Faults{.Silent = command == "$017"}; };
    Tick(form);
    EXPECT_EQ(shown("1").section(", ", 1), "Stopped, No (stale), \u26a0 Active (stale)");
    EXPECT_EQ(Shown(form, "PollState"), QString("\u26a0 Overflow: no reply") + Stale);
    test.Sent.clear();
    FreqDiagForm frequencies(test.Session, test.Messages);
    Tick(frequencies);
    EXPECT_EQ(test.Sent.front() + test.Sent.back(), "$01F#011");
    EXPECT_EQ(Shown(frequencies, "Frequency_1"), QString("%1 Hz").arg(module.Counters[1].Count));
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
    EXPECT_TRUE(Shown(form, "Reading_0").contains(QRegularExpression("^[+-]\\d+\\.\\d{4}$")));
    EXPECT_EQ(Shown(form, "LowAlarm") + Shown(form, "ActiveAlarms"), "-01.500 V-");
    test.Sent.clear();
    ClickEach(form, {"Output_1"});
    EXPECT_EQ(States(form, {"Input", "Output"}), "1 01");
    EXPECT_EQ(test.Sent, (Lines{"@01DI", "@01DI", "@01DO02", "#01", "@01DI"}));
    module.LowLimit = -10.5;
    for (const int mode : {AlarmDisabled, AlarmMomentary, AlarmLatched}) {
        module.AlarmMode = mode;
        Tick(form);
        EXPECT_EQ(Shown(form, "ActiveAlarms"), mode == AlarmDisabled ? "-" : "\u26a0 High");
        ExpectUsable(form, {"Output_0"}, mode == AlarmDisabled);
        ExpectUsable(form, {"ClearBtn"}, mode == AlarmLatched);
    }
    module.HighLimit = 11;
    ClickEach(form, {"ClearBtn"});
    EXPECT_EQ(Shown(form, "ActiveAlarms"), "None");
    test.Module.OwnFaults.Silent = true;
    Tick(form);
    EXPECT_EQ(test.Sent.back(), "#01") << "nothing more is asked then";
    EXPECT_EQ(Shown(form, "Reading_0") + " " + Shown(form, "AlarmMode"), "*error* Latch (stale)");
}

} // namespace
} // namespace kavro
