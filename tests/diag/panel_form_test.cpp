#include "diag/ad_diag_form.h"
#include "diag/da_diag_form.h"
#include "diag/panel_on_line.h"

#include <QScrollBar>

namespace kavro {
namespace {

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
