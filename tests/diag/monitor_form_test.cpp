#include "diag/monitor_form.h"

#include "diag/panel_on_line.h"
#include "map/search.h"
#include "sim/demo_line.h"
#include "terminal/test_folder.h"

#include <QFileDialog>
#include <QImage>
#include <QTableWidget>

#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>

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
        Form = std::make_unique<MonitorForm>(Session, Messages, nullptr, [] { return WallTime{0, 120}; });
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
    EXPECT_EQ(Cell(5, StateColumn), "ok");
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
    ChooseFile("PictureBtn", folder.Path("trend.png"));
    EXPECT_EQ(QImage(QString::fromStdString(folder.Path("trend.png"))).size(), trend.size() * 2);
    ASSERT_EQ(mkfifo(folder.Path("pipe.png").c_str(), 0600), 0);
    ChooseFile("PictureBtn", folder.Path("pipe.png"));
    EXPECT_EQ(Messages.Shown.size(), 1U);
    EXPECT_TRUE(std::filesystem::is_fifo(folder.Path("pipe.png"))) << "only a file is replaced";
}

// As on a disk that is full, no file gets longer than that.
void LimitFiles(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limits = {bytes, RLIM_INFINITY};
    setrlimit(RLIMIT_FSIZE, &limits);
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
    LimitFiles(text.size() + 10);
    Turns(5);
    LimitFiles(RLIM_INFINITY);
    EXPECT_EQ(Messages.Shown.size(), 1U);
    EXPECT_EQ(state.text(), "Not logging");
    EXPECT_EQ(Cell(6, StateColumn), "ok") << "polling goes on";
    EXPECT_EQ(folder.Read("log.csv"), text) << "no part of a line";
}

TEST_F(MonitorFormTest, AnAdapterThatIsPulledOutAndPutBack) {
    Turns(7);
    Line.Unplug();
    Turns(5);
    EXPECT_EQ(Cell(6, StateColumn), "no reply");
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
