#include "diag/monitor_form.h"

#include "diag/full_disk.h"
#include "map/search.h"
#include "sim/demo_line.h"
#include "support/form_driver.h"
#include "support/test_session.h"
#include "terminal/test_folder.h"

#include <QFileDialog>
#include <QImage>
#include <QLabel>
#include <QTableWidget>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace kavro {
namespace {

enum { AddressColumn = 0, ModelColumn = 1, Value0 = 2, StateColumn = 10, AgeColumn = 11 }; // of the grid

/// The demo line up to address 7, found by a search.
class MonitorFormTest : public testing::Test, protected SimulatedSession {
protected:
    MonitorFormTest() : SimulatedSession(DemoLine()) {
        EnableBaudCodes(Session, {3});
        Session.SearchHighAddress = 7;
        NetworkSearch(Session, {}).Run();
        Form = std::make_unique<MonitorForm>(Session, Messages, nullptr, [] { return WallTime{0, 120}; });
        Form->show();
        Find<QTimer>(*Form, "Timer1").stop(); // the tests tick
    }

    // Lets the timer tick as often.
    void Tick(int times = 1) {
        for (int turn = 0; turn < times; ++turn) {
            const auto due = Time.Microseconds() + std::int64_t{1000} * MonitorTickMs;
            Form->Timer1_Timer();
            Time.SleepUntil(due);
        }
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

    std::unique_ptr<MonitorForm> Form;
};

TEST_F(MonitorFormTest, OneRowPerModuleAndOneModulePerTick) {
    EXPECT_EQ(Form->windowTitle(), "Monitor");
    EXPECT_EQ(Cell(6, AddressColumn) + Cell(6, ModelColumn) + Cell(6, StateColumn), "7 (07H)8250waiting");
    Tick(7);
    EXPECT_EQ(Cell(6, Value0 + 2), "disabled");
    EXPECT_EQ(Cell(5, StateColumn), "ok");
    Line.ModuleAt(1).OwnFaults.Silent = true;
    const std::string before = Cell(0, Value0);
    Tick(7);
    EXPECT_EQ(Cell(0, Value0), before);
    EXPECT_EQ(Cell(0, StateColumn) + " " + Cell(1, StateColumn), "no reply ok");
    EXPECT_EQ(Cell(0, AgeColumn), "6.6 s");
    EXPECT_TRUE(Messages.Shown.empty());
}

TEST_F(MonitorFormTest, SpaceTicksAValueForTheTrend) {
    Tick(7);
    auto& grid = Find<QTableWidget>(*Form, "MonitorGrid");
    auto& trend = Find<QWidget>(*Form, "TrendView");
    for (const auto& [column, names] : {std::pair{Value0 + 1, "5 (05H) 8250 ch 1"},
                                        {Value0, "5 (05H) 8250 ch 1, 5 (05H) 8250 ch 0"},
                                        {Value0 + 1, "5 (05H) 8250 ch 0"},
                                        {AddressColumn, "5 (05H) 8250 ch 0"}}) {
        grid.setCurrentCell(4, column);
        Type(grid, " ");
        EXPECT_EQ(trend.accessibleDescription(), names);
    }
    const TestFolder folder;
    ChooseFile("PictureBtn", folder.Path("trend.png"));
    EXPECT_EQ(QImage(QString::fromStdString(folder.Path("trend.png"))).size(), trend.size() * 2);
    ASSERT_EQ(mkfifo(folder.Path("pipe.png").c_str(), 0600), 0);
    ChooseFile("PictureBtn", folder.Path("pipe.png"));
    EXPECT_EQ(Messages.Shown.size(), 1U) << "only a file is replaced";
    EXPECT_TRUE(std::filesystem::is_fifo(folder.Path("pipe.png")));
}

TEST_F(MonitorFormTest, LogsUntilTheDiskIsFull) {
    const TestFolder folder;
    auto& state = Find<QLabel>(*Form, "LogState");
    ChooseFile("LogBtn", folder.Path("log.csv"));
    EXPECT_EQ(state.text().toStdString(), "Logging to " + folder.Path("log.csv"));
    Tick(2);
    const std::string text = folder.Read("log.csv");
    EXPECT_TRUE(text.starts_with(CsvHeader + std::string("1970-01-01T02:00:00.000+02:00,1,8210,0,")));
    EXPECT_EQ(std::ranges::count(text, '\n'), 3);
    const FullDisk full(text.size() + 10);
    Tick(5);
    EXPECT_EQ(Messages.Shown.size(), 1U);
    EXPECT_EQ(state.text(), "Not logging");
    EXPECT_EQ(Cell(6, StateColumn), "ok") << "polling goes on";
    EXPECT_EQ(folder.Read("log.csv"), text);
}

TEST_F(MonitorFormTest, AnAdapterThatIsPulledOutAndPutBack) {
    Tick(7);
    Line.Unplug();
    Tick(5);
    EXPECT_EQ(Messages.Shown.size(), 1U);
    EXPECT_EQ(Cell(6, StateColumn), "no reply");
    Line.Plug();
    Tick(3000 / MonitorTickMs);
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
