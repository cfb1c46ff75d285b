#include "monitor/monitor_form.h"

#include "diag/panel_on_line.h"
#include "map/search.h"
#include "monitor/csv_log.h"
#include "support/full_disk.h"

#include <QFileDialog>
#include <QImage>
#include <QListWidget>
#include <QScrollBar>
#include <QSpinBox>
#include <QSplitter>
#include <QTableView>

namespace kavro {
namespace {

enum { StateColumn, AgeColumn, Value0 }; // of the grid

struct FakeHistory : KeptHistory, TrendHistory {
    FakeHistory(HistoryChoice choice, std::vector<Reading>& stored)
        : Chosen(std::move(choice)), Stored(stored) {}

    void Take(const std::vector<Reading>& readings) override {
        Stored.insert(Stored.end(), readings.begin(), readings.end());
    }
    TrendHistory& Past() override { return *this; }
    const HistoryChoice& Choice() const override { return Chosen; }
    void Ask(std::vector<HistoryQuestion>, std::function<void(std::vector<HistoryAnswer>)>) override {}

    HistoryChoice Chosen;
    std::vector<Reading>& Stored;
};

/// The demo line up to address 7, found by a search.
class MonitorFormTest : public testing::Test, protected SimulatedSession {
protected:
    MonitorFormTest() : SimulatedSession(DemoLine()) {
        EnableBaudCodes(Session, {3});
        Session.SearchHighAddress = 7;
        NetworkSearch(Session, {}).Run();
        Time.Sleep(MonitorTickMs); // until the timer ticks
        Session.SavePreferences = [this](const Preferences&) { ++Saved; };
        Open();
    }

    void Open() {
        Form.reset();
        Form = std::make_unique<MonitorForm>(
            Session, Messages, nullptr, [this] { return Now; },
            [this](const HistoryChoice& choice, const HistoryTeller& tell) {
                Tell = tell;
                return std::make_unique<FakeHistory>(choice, Stored);
            });
        Form->show();
        Form->resize(2500, 700); // all values of a module beside each other
        QApplication::processEvents();
        StopTimer(*Form);
    }

    // Lets the timer tick as often.
    void Turns(int times) {
        for (int turn = 0; turn < times; ++turn) {
            const auto due = Time.Microseconds() + std::int64_t{1000} * MonitorTickMs;
            Tick(*Form);
            Time.SleepUntil(due);
        }
        QApplication::processEvents(); // what is told comes beside the turns
    }

    QTableView& Grid() { return Find<QTableView>(*Form, "MonitorGrid"); }
    QModelIndex At(int row, int column) { return Grid().model()->index(row, column); }
    std::string Cell(int row, int column) { return At(row, column).data().toString().toStdString(); }
    std::string Heading(int row) {
        return Grid().model()->headerData(row, Qt::Vertical).toString().toStdString();
    }
    bool Ticked(int row, int column) { return At(row, column).data(Qt::CheckStateRole) == Qt::Checked; }
    void TickBox(int row, int column, bool on) {
        Grid().model()->setData(At(row, column), on ? Qt::Checked : Qt::Unchecked, Qt::CheckStateRole);
    }

    void ChooseFile(const char* button, const std::string& path) {
        const auto choose = [&path](QDialog& dialog) {
            Find<QLineEdit>(dialog, "fileNameEdit").setText(QString::fromStdString(path));
            static_cast<QFileDialog&>(dialog).setOption(QFileDialog::DontConfirmOverwrite);
            dialog.accept();
        };
        DialogDriver driver({{"SaveDialog", choose}});
        Click(*Form, button);
        EXPECT_TRUE(driver.Finished());
    }

    WallTime Now = {0, 120};
    int Saved = 0;
    std::vector<Reading> Stored;
    HistoryTeller Tell;
    std::unique_ptr<MonitorForm> Form;
};

TEST_F(MonitorFormTest, OneRowPerModuleAndOneModulePerTick) {
    EXPECT_EQ(Heading(6), "7 (07H) 8250");
    EXPECT_EQ(Cell(6, StateColumn), "waiting");
    Session.DecimalSeparator = ",";
    Turns(6);
    Form->Timer1_Timer();
    EXPECT_EQ(Session.Line.CommandText, "$076") << "one transaction at a time";
    while (Form->Busy())
        QApplication::processEvents();
    EXPECT_EQ(Cell(6, Value0 + 2), "disabled");
    EXPECT_EQ(Cell(5, StateColumn) + " " + Cell(5, Value0 + 3), "open open");
    Line.ModuleAt(1).OwnFaults.Silent = true;
    const std::string before = Cell(0, Value0);
    Turns(7);
    EXPECT_EQ(Cell(0, Value0), before);
    EXPECT_EQ(Cell(0, StateColumn) + " " + Cell(1, StateColumn), "no reply ok");
    EXPECT_EQ(Cell(0, AgeColumn), "6,6 s");
    EXPECT_EQ(before.find('.'), std::string::npos) << before;
    EXPECT_TRUE(Messages.Shown.empty());
}

TEST_F(MonitorFormTest, SpaceTicksAValueForTheTrend) {
    Turns(7);
    auto& grid = Grid();
    auto& trend = Find<QWidget>(*Form, "TrendView");
    for (const auto& [column, names] : {std::pair{Value0 + 1, "5 (05H) 8250 ch 1"},
                                        {Value0, "5 (05H) 8250 ch 1, 5 (05H) 8250 ch 0"},
                                        {Value0 + 1, "5 (05H) 8250 ch 0"},
                                        {AgeColumn, "5 (05H) 8250 ch 0"}}) {
        grid.setCurrentIndex(At(4, column));
        Type(grid, " ");
        EXPECT_EQ(trend.accessibleDescription(), names);
    }
    const TestFolder folder;
    const auto picture = [&](std::int64_t unixMs) {
        Now.UnixMs = unixMs;
        ChooseFile("PictureBtn", folder.Path("trend"));
        return QImage::fromData(QByteArray::fromStdString(Files[folder.Path("trend.png")]));
    };
    const QImage first = picture(0);
    EXPECT_EQ(first.size(), trend.size() * 2);
    EXPECT_EQ(first, picture(0));
    EXPECT_NE(first, picture(86'400'000)) << "another day, the same time";
    Session.ReplaceFile = [](const auto&, const auto&) { throw RuntimeFailure("The disk is full."); };
    ChooseFile("PictureBtn", folder.Path("trend.png"));
    EXPECT_EQ(Messages.Shown, (ShownMessages{{"The disk is full.", "Error"}}));
}

TEST_F(MonitorFormTest, WithoutATickTheValuesHaveTheRoom) {
    Turns(7);
    auto& grid = Grid();
    auto& splitter = Find<QSplitter>(*Form, "Splitter");
    const auto tick = [&](bool on) {
        TickBox(0, Value0, on);
        EXPECT_EQ(Find<QWidget>(*Form, "TrendView").isVisible(), on);
        EXPECT_EQ(Find<QLabel>(*Form, "TrendHint").isVisible(), !on);
        EXPECT_EQ(Find<QWidget>(*Form, "PictureBtn").isEnabled(), on);
    };
    const QSize size = Form->size();
    EXPECT_EQ(grid.width(), splitter.width());
    tick(true);
    EXPECT_LT(grid.width(), splitter.width() * 3 / 4);
    splitter.setSizes({300, splitter.width() - 300}); // as the user does
    const int chosen = grid.width();
    tick(false);
    EXPECT_EQ(grid.width(), splitter.width());
    tick(true);
    EXPECT_EQ(grid.width(), chosen);
    EXPECT_EQ(Form->size(), size);
}

TEST_F(MonitorFormTest, LogsUntilTheDiskIsFull) {
    const TestFolder folder;
    auto& state = Find<QLabel>(*Form, "LogState");
    ChooseFile("LogBtn", folder.Path("log.csv"));
    EXPECT_EQ(state.text().toStdString(), "Logging to " + folder.Path("log.csv"));
    Turns(2);
    const std::string text = folder.Read("log.csv");
    EXPECT_TRUE(text.starts_with(CsvHeader + std::string("1970-01-01T02:00:00.000+02:00,1,8210,0,")));
    EXPECT_EQ(std::ranges::count(text, '\n'), 3);
    FullDisk::Limit(text.size() + 10);
    Turns(5);
    FullDisk::Limit(RLIM_INFINITY);
    EXPECT_EQ(Messages.Shown.size(), 1U);
    EXPECT_EQ(state.text(), "Not logging");
    EXPECT_EQ(Cell(6, StateColumn), "ok") << "polling goes on";
    EXPECT_EQ(folder.Read("log.csv"), text) << "no part of a line";
}

TEST_F(MonitorFormTest, AnAdapterThatIsPulledOutAndPutBack) {
    Turns(7);
    Line.Unplug();
    Turns(5);
    EXPECT_EQ(Cell(6, StateColumn), "line lost");
    Line.Plug();
    Turns(3000 / MonitorTickMs);
    EXPECT_EQ(Cell(0, StateColumn), "ok");
    EXPECT_EQ(Messages.Shown.size(), 1U);
}

TEST_F(MonitorFormTest, ValuesWithoutRoomGoOnInFurtherRows) {
    Turns(7);
    const auto rows = [&](int width) {
        Form->resize(width, 700);
        QApplication::processEvents();
        return Grid().model()->rowCount();
    };
    EXPECT_EQ(rows(2500), 7);
    const std::string last = Cell(4, Value0 + 7);
    TickBox(4, Value0 + 7, true);
    Grid().setCurrentIndex(At(4, Value0 + 7));
    for (const int width : {1900, 1400, 900, 2500}) {
        const int count = rows(width);
        EXPECT_EQ(Grid().horizontalScrollBar()->maximum(), 0) << width;
        EXPECT_EQ(Cell(Grid().currentIndex().row(), Grid().currentIndex().column()), last) << width;
        EXPECT_TRUE(Ticked(Grid().currentIndex().row(), Grid().currentIndex().column())) << width;
        EXPECT_EQ(count > 7, width < 2500) << width;
    }
    TickBox(Grid().currentIndex().row(), Grid().currentIndex().column(), false);
    rows(900);
    int row = 0;
    while (Heading(row) != "5 (05H) 8250")
        ++row;
    const int columns = Grid().model()->columnCount() - Value0;
    EXPECT_TRUE(Heading(row + 1).starts_with("5: " + std::to_string(columns) + " to ")) << Heading(row + 1);
    EXPECT_EQ(Cell(row, StateColumn) + Cell(row + 1, StateColumn), "ok");
}

TEST_F(MonitorFormTest, WhatIsChosenIsRememberedAndLeftOutModulesAreNotAsked) {
    Turns(7);
    TickBox(4, Value0, true);
    Find<QSpinBox>(*Form, "Interval").setValue(0);
    Find<QComboBox>(*Form, "Span").setCurrentIndex(0);
    const auto leaveOut = [](const char* button) {
        return [button](QDialog& dialog) {
            Find<QListWidget>(dialog, "ModuleList").item(4)->setCheckState(Qt::Unchecked);
            Click(dialog, button);
        };
    };
    for (const auto& [button, addresses] :
         {std::pair{"CancelBtn", std::set<std::int16_t>{}}, {"OKBtn", {5}}}) {
        DialogDriver driver({{"ModuleChoiceForm", leaveOut(button)}});
        Click(*Form, "ModulesBtn");
        EXPECT_EQ(Session.Preferences.Monitor.LeftOut, addresses);
    }
    EXPECT_FALSE(Find<QWidget>(*Form, "TrendView").isVisible());
    EXPECT_EQ(Session.Preferences.Monitor.Ticked, (std::vector<ValueKey>{{5, "0"}})) << "still";
    EXPECT_EQ(Session.Preferences.Monitor.SpanMinutes, 1);
    EXPECT_EQ(Saved, 4);
    Open();
    EXPECT_EQ(Grid().model()->rowCount(), 6);
    bool asked = false;
    Line.Log = [&](const LineEvent& event) { asked = asked || event.Command.substr(1, 2) == "05"; };
    Turns(12);
    EXPECT_FALSE(asked);
    Session.Preferences.Monitor.LeftOut.clear();
    Session.SavePreferences = [](const Preferences&) { throw RuntimeFailure("The disk is full."); };
    Open();
    EXPECT_TRUE(Find<QWidget>(*Form, "TrendView").isVisible());
    for (const int minutes : {3, 4})
        Find<QComboBox>(*Form, "Span").setCurrentIndex(minutes);
    QApplication::processEvents();
    EXPECT_EQ(Messages.Shown.size(), 1U) << "once";
    EXPECT_EQ(Session.Preferences.Monitor.SpanMinutes, 30) << "until the program ends";
}

TEST_F(MonitorFormTest, OneValueAloneUntilEscape) {
    Turns(7);
    Session.Preferences.Monitor.Thresholds[{1, "0"}].Low = 1e9;
    auto& large = Find<QWidget>(*Form, "LargeValue");
    Grid().setCurrentIndex(At(0, Value0));
    PressKey(Grid(), Qt::Key_Return);
    EXPECT_TRUE(large.isVisible());
    EXPECT_EQ(large.accessibleName(), "1 (01H) 8210 ch 0");
    EXPECT_TRUE(large.accessibleDescription().contains("below its threshold"));
    EXPECT_TRUE(Cell(0, Value0).starts_with("\u25bc ")) << Cell(0, Value0);
    Line.ModuleAt(1).OwnFaults.Silent = true;
    Turns(7);
    EXPECT_TRUE(large.accessibleDescription().startsWith("no reply")) << "polling goes on";
    PressKey(large, Qt::Key_PageUp);
    EXPECT_TRUE(large.accessibleName().startsWith("7 (07H) 8250 ch 7"));
    PressKey(large, Qt::Key_Escape);
    EXPECT_FALSE(large.isVisible());
    EXPECT_EQ(Heading(Grid().currentIndex().row()), "7 (07H) 8250") << "or a further row of it";
    EXPECT_TRUE(Form->isVisible());
    PressKey(Grid(), Qt::Key_Escape);
    EXPECT_FALSE(Form->isVisible());
}

TEST_F(MonitorFormTest, StoresInAHistoryThatMayHaveTrouble) {
    const TestFolder folder;
    const auto choose = [&](QDialog& dialog) {
        Find<QLineEdit>(dialog, "fileNameEdit").setText(QString::fromStdString(folder.Path("h.sqlite")));
        dialog.accept();
    };
    const auto name = [](QDialog& dialog) {
        Find<QLineEdit>(dialog, "Line").clear();
        EXPECT_FALSE(Find<QWidget>(dialog, "OKBtn").isEnabled());
        Find<QLineEdit>(dialog, "Line").setText("north-1");
        Find<QSpinBox>(dialog, "KeepDays").setValue(7);
        Click(dialog, "OKBtn");
    };
    DialogDriver driver({{"SaveDialog", choose}, {"HistoryChoiceForm", name}});
    Click(*Form, "StoreBtn");
    EXPECT_TRUE(driver.Finished());
    Turns(2);
    EXPECT_EQ(Stored.size(), 2U);
    Tell("The disk is full.");
    EXPECT_TRUE(Find<QLabel>(*Form, "StoreState").text().endsWith("The disk is full."));
    Turns(1);
    EXPECT_GT(Stored.size(), 2U);
    Line.Unplug();
    Turns(1);
    Click(*Form, "StoreBtn");
    EXPECT_EQ(Find<QLabel>(*Form, "StoreState").text(), "Not storing");
    EXPECT_EQ(Messages.Shown.size(), 2U);
}

TEST_F(MonitorFormTest, AsFastAsTheLineAllowsItSleepsWhileNoModuleIsDue) {
    for (int address = 1; address <= 7; ++address)
        Line.ModuleAt(address).OwnFaults.Silent = true;
    Find<QSpinBox>(*Form, "Interval").setValue(0);
    auto& timer = Find<QTimer>(*Form, "Timer1");
    for (int turn = 0; turn < 500 && timer.interval() < 100; ++turn) { // until all of them back off
        Tick(*Form);
        Time.Sleep(std::max(timer.interval(), 50));
    }
    const auto sent = Session.Line.Statistics.Transactions;
    Tick(*Form);
    EXPECT_EQ(Session.Line.Statistics.Transactions, sent);
    EXPECT_GT(timer.interval(), 50);
    Find<QSpinBox>(*Form, "Interval").setValue(MonitorTickMs);
    EXPECT_EQ(timer.interval(), MonitorTickMs);
}

TEST_F(MonitorFormTest, AnEmptyMapSaysWhatToDo) {
    Session.ModuleCount = 0;
    Form = std::make_unique<MonitorForm>(Session, Messages, nullptr);
    EXPECT_TRUE(Find<QLabel>(*Form, "NoModules").text().contains("Search first"));
    EXPECT_FALSE(Find<QTimer>(*Form, "Timer1").isActive());
}

} // namespace
} // namespace kavro
