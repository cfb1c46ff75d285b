#include "diag/ad_diag_form.h"
#include "diag/ctr_diag_form.h"
#include "diag/da_diag_form.h"
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
#include <QScrollBar>

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

bool SaysLost(PanelForm& form) {
    return Find<QLabel>(form, "LineState").isVisibleTo(&form);
}

TEST(PanelForm, CountsTransactionsAndTellsAnOutageOnce) {
    ScriptedPanel test({.Model = "8230  ", .InputRange = 8});
    test.Session.Line.Statistics.Transactions = 7; // of before
    test.Port().Queue = {{"!0103\r", 10}, {"!01A1\r", 20}, {">+1\r", 0, 10}};
    AdDiagForm form(test.Session, test.Messages);
    Tick(form);
    EXPECT_EQ(Shown(form, "Statistics"),
              "Transactions: 4   Failures: 1 (1 no reply)   Reply time: 30.0 ms, mean 20.0 ms");
    test.Port().OutputsUntilFailure = 0; // it opens, and fails again
    for (int tick = 0; tick < 50; ++tick, test.Time.Sleep(100)) {
        Tick(form);
        EXPECT_TRUE(SaysLost(form));
    }
    EXPECT_EQ(std::ranges::count(test.Log, "COM1 open"), 4) << "once a second";
    EXPECT_EQ(test.Messages.Shown.size(), 1U);
}

TEST(PanelForm, GoesOnWhenTheAdapterIsBack) {
    SimulatedPanel test({.Model = "8250  ", .BaudCode = 4, .InputRange = 8}, 19200);
    AdDiagForm form(test.Session, test.Messages);
    for (const std::size_t outages : {1U, 2U}) {
        Tick(form);
        EXPECT_EQ(Shown(form, "FormatText_0"), "V   ");
        EXPECT_NE(Shown(form, "Reading_7"), "*error*") << "at its baud rate again";
        test.Line.Unplug();
        for (int tick = 0; tick < 100; ++tick, test.Time.Sleep(100)) {
            Tick(form);
            EXPECT_TRUE(SaysLost(form));
        }
        EXPECT_EQ(Shown(form, "FormatText_0"), "V (stale)");
        EXPECT_EQ(test.Messages.Shown.size(), outages);
        test.Line.Plug();
        for (int tick = 0; SaysLost(form) && tick < 30; ++tick, test.Time.Sleep(100))
            Tick(form);
        EXPECT_FALSE(SaysLost(form));
    }
}

TEST(PanelForm, AnOutageDrivesNothing) {
    SimulatedPanel test({.Model = "8310  ", .InputRange = 48});
    test.Line.Unplug();
    DaDiagForm form(test.Session, test.Messages);
    auto& bar = Find<QScrollBar>(form, "DaScroll");
    for (const int position : {8, 16}) {
        EXPECT_FALSE(bar.isEnabled());
        EXPECT_TRUE(Find<QTimer>(form, "Timer1").isActive());
        test.Line.Plug();
        test.Time.Sleep(1000);
        form.Timer1_Timer();
        while (form.Busy())
            QApplication::processEvents();
        EXPECT_TRUE(bar.isEnabled());
        EXPECT_FALSE(Find<QTimer>(form, "Timer1").isActive());
        bar.setValue(position);
        QApplication::processEvents();
        test.Line.Unplug();
        bar.setValue(bar.maximum());
        QApplication::processEvents();
        EXPECT_EQ(Shown(form, "DA_data"), position == 8 ? "0.005" : "0.010") << "back to what was sent";
    }
    EXPECT_EQ(test.Sent, (Lines{"$01F", "#0100.000", "#0100.005", "#0100.010"}))
        << "the start is made up for";
}

TEST(PanelForm, EventsRunBetweenTransactions) {
    ScriptedPanel test({.Model = "8250  ", .InputRange = 8});
    test.Answer({"!01FF", ""});
    AdDiagForm form(test.Session, test.Messages);
    form.show();
    StopTimer(form);
    test.Sent();
    for (int late = 0; late < 5; ++late)
        form.Timer1_Timer(); // due while one runs: one follows
    for (int turn = 0; turn < 200; ++turn)
        QApplication::processEvents();
    EXPECT_EQ(test.Sent().size(), 16U);
    form.Timer1_Timer();
    while (test.Log.size() < 3)
        QApplication::processEvents();
    form.close(); // as the main window does
    Click(form, "ExitBtn");
    QApplication::processEvents();
    EXPECT_EQ(test.Sent().size(), 3U);
    EXPECT_FALSE(form.Busy() || form.isVisible());
}

/// Does something while a message is up.
struct BusyMessages : RecordedMessages {
    std::function<void()> WhileUp;
    void Show(const std::string&, const std::string&) override { WhileUp(); }
};

struct ProbeLine {
    SimulatedPanel Test{{.Model = "8320  "}};
    BusyMessages MessagesUp;
};

/// A panel that is open and writes down what it does.
struct ProbePanel : ProbeLine, PanelForm {
    ProbePanel() : PanelForm("ProbePanel", "", Test.Session, MessagesUp, nullptr) {
        Finish();
        show();
    }
    using PanelForm::Operate;
    Lines Done;
    void Tick() override {
        Then([this] { Done.push_back("step"); });
    }
};

TEST(PanelForm, NothingRunsUnderAMessageOfAStep) {
    ProbePanel form;
    form.MessagesUp.WhileUp = [&] {
        form.Timer1_Timer();
        form.Operate([&] { form.Done.push_back("click"); });
        for (int turn = 0; turn < 10; ++turn)
            QApplication::processEvents();
        form.close();
        EXPECT_TRUE(form.isVisible()) << "not before its step has left the stack";
    };
    form.Timer1_Timer();
    form.Operate([&] {
        form.Operate([&] { form.Done.push_back("queued"); });
        form.Done.push_back("click");
    });
    EXPECT_EQ(form.Done, Lines{"click"});
    QApplication::processEvents();
    EXPECT_EQ(form.Done.back(), "queued") << "before the next step";
    form.Operate([&] { form.MessagesUp.Show({}, {}); });
    EXPECT_FALSE(form.isVisible());
    EXPECT_EQ(form.Done.size(), 2U);
}

TEST(PanelForm, GoesOnUnderTheMessageOfAnOutage) {
    ProbePanel form;
    int told = 0;
    form.MessagesUp.WhileUp = [&] {
        ++told;
        form.Test.Time.Sleep(1000);
        Tick(form);
        EXPECT_EQ(form.Done, Lines{"step"});
        EXPECT_FALSE(SaysLost(form));
        form.Operate([] { throw RuntimeFailure("gone again"); });
        form.close();
    };
    form.Operate([] { throw RuntimeFailure("gone"); });
    EXPECT_EQ(told, 1);
    EXPECT_FALSE(form.Busy() || form.isVisible());
}

} // namespace
} // namespace kavro
