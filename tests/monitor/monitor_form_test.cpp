#include "monitor/monitor_form.h"

#include "diag/panel_on_line.h"
#include "map/search.h"
#include "support/full_disk.h"

#include <QFileDialog>
#include <QImage>
#include <QSplitter>
#include <QTableWidget>

namespace kavro {
namespace {

enum { StateColumn, AgeColumn, Value0 }; // of the grid

/// The demo line up to address 7, found by a search.
class MonitorFormTest : public testing::Test, protected SimulatedSession {
protected:
    MonitorFormTest() : SimulatedSession(DemoLine()) {
        EnableBaudCodes(Session, {3});
        Session.SearchHighAddress = 7;
        NetworkSearch(Session, {}).Run();
        Time.Sleep(MonitorTickMs); // until the timer ticks
        Form = std::make_unique<MonitorForm>(Session, Messages, nullptr, [this] { return Now; });
        Form->show();
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

    std::string Cell(int row, int column) {
        return Find<QTableWidget>(*Form, "MonitorGrid").item(row, column)->text().toStdString();
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
    std::unique_ptr<MonitorForm> Form;
};

TEST_F(MonitorFormTest, OneRowPerModuleAndOneModulePerTick) {
    EXPECT_EQ(Find<QTableWidget>(*Form, "MonitorGrid").verticalHeaderItem(6)->text(), "7 (07H) 8250");
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
    EXPECT_EQ(Cell(0, AgeColumn), "6,1 s");
    EXPECT_EQ(before.find('.'), std::string::npos) << before;
    EXPECT_TRUE(Messages.Shown.empty());
}

TEST_F(MonitorFormTest, SpaceTicksAValueForTheTrend) {
    Turns(7);
    auto& grid = Find<QTableWidget>(*Form, "MonitorGrid");
    auto& trend = Find<QWidget>(*Form, "TrendView");
    for (const auto& [column, names] : {std::pair{Value0 + 1, "5 (05H) 8250 ch 1"},
                                        {Value0, "5 (05H) 8250 ch 1, 5 (05H) 8250 ch 0"},
                                        {Value0 + 1, "5 (05H) 8250 ch 0"},
                                        {AgeColumn, "5 (05H) 8250 ch 0"}}) {
        grid.setCurrentCell(4, column);
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
    auto& grid = Find<QTableWidget>(*Form, "MonitorGrid");
    auto& splitter = Find<QSplitter>(*Form, "Splitter");
    const auto tick = [&](bool on) {
        grid.item(0, Value0)->setCheckState(on ? Qt::Checked : Qt::Unchecked);
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

TEST_F(MonitorFormTest, AnEmptyMapSaysWhatToDo) {
    Session.ModuleCount = 0;
    Form = std::make_unique<MonitorForm>(Session, Messages, nullptr);
    EXPECT_TRUE(Find<QLabel>(*Form, "NoModules").text().contains("Search first"));
    EXPECT_FALSE(Find<QTimer>(*Form, "Timer1").isActive());
}

} // namespace
} // namespace kavro
