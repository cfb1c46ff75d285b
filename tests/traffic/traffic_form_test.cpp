#include "traffic/traffic_form.h"

#include "support/form_driver.h"
#include "terminal/test_folder.h"

#include <QClipboard>
#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>
#include <QScrollBar>
#include <QTableView>

namespace kavro {
namespace {

struct TrafficFormTest : testing::Test {
    TrafficFormTest() {
        Test.Session.Line.Listeners.push_back(&Log);
        for (int i = 0; i < 100; ++i)
            Pass(i);
        Form.emplace(Test.Session, Devices, Log, [this] { return !LineInUse; });
        Form->BringUp();
        EXPECT_TRUE(Wait([this] { return Rows() == 100; }));
    }
    ~TrafficFormTest() override { Form.reset(); }

    // Every tenth is silent, at address 07; the others are of 05.
    void Pass(int i) {
        const bool silent = i % 10 == 9;
        Test.Session.Line.Tell({.Utc = i * std::int64_t{1000},
                                .Baud = 9600,
                                .Sent = silent ? "$072\r" : "#05" + std::to_string(i % 100) + "\r",
                                .Received = silent ? "" : ">+01.000\r",
                                .Outcome = silent ? TrafficOutcome::Silent : TrafficOutcome::Complete});
    }
    template <class Condition>
    static bool Wait(Condition done) {
        QElapsedTimer time;
        for (time.start(); !done() && time.elapsed() < 5000;)
            QApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        return done();
    }
    QTableView& Table() { return Find<QTableView>(*Form, "TrafficTable"); }
    int Rows() { return Table().model()->rowCount(); }
    QString Cell(int row, int column) { return Table().model()->index(row, column).data().toString(); }
    bool AtEnd() { return Table().verticalScrollBar()->value() == Table().verticalScrollBar()->maximum(); }
    QString Status() { return Find<QLabel>(*Form, "Status").text(); }

    // Answers the file dialog that `button`, or an entry of the menu behind it, brings up.
    void Choose(const QString& button, const QString& entry, const std::string& path) {
        EXPECT_TRUE(Wait([&] { return Find<QWidget>(*Form, button).isEnabled(); })); // nothing is being saved
        Click(*Form, button);
        if (!entry.isEmpty()) {
            Trigger(*Form, entry);
            Find<QMenu>(*Form, "SaveMenu").close();
        }
        auto& dialog = Find<QFileDialog>(*Form, "SaveDialog");
        EXPECT_EQ(dialog.windowModality(), Qt::WindowModal);
        Find<QLineEdit>(dialog, "fileNameEdit").setText(QString::fromStdString(path));
        static_cast<QDialog&>(dialog).accept();
        EXPECT_TRUE(Wait([this] { return !Form->findChild<QFileDialog*>(); }));
    }

    SimulatedSession Test;
    FakeDevices Devices;
    TrafficLog Log;
    bool LineInUse = false;
    std::optional<TrafficForm> Form;
};

TEST_F(TrafficFormTest, FollowsFiltersAndPauses) {
    EXPECT_TRUE(AtEnd());
    Pass(100);
    EXPECT_TRUE(Wait([this] { return Rows() == 101; }));
    EXPECT_TRUE(AtEnd());
    Table().verticalScrollBar()->setValue(20);
    Pass(101);
    EXPECT_TRUE(Wait([this] { return Rows() == 102; }));
    EXPECT_EQ(Table().verticalScrollBar()->value(), 20);
    for (const int failure : {9, 19}) {
        Click(*Form, "NextFailureBtn");
        EXPECT_EQ(Table().currentIndex().row(), failure);
    }

    auto& address = Find<QComboBox>(*Form, "AddressFilter");
    address.setCurrentText("7 (07H)");
    EXPECT_EQ(Rows(), 10);
    EXPECT_EQ(Table().currentIndex().row(), 1); // still the same exchange
    address.setCurrentIndex(0);
    Find<QComboBox>(*Form, "OutcomeFilter").setCurrentIndex(1);
    EXPECT_EQ(Rows(), 10);
    EXPECT_EQ(Cell(0, 7), "silent");
    Find<QComboBox>(*Form, "OutcomeFilter").setCurrentIndex(0);
    Find<QLineEdit>(*Form, "TextFilter").setText("#0542");
    EXPECT_EQ(Rows(), 1);
    Find<QAbstractButton>(*Form, "HexCheck").setChecked(true);
    EXPECT_EQ(Rows(), 0);
    Find<QLineEdit>(*Form, "TextFilter").setText("35 34 32");
    EXPECT_EQ(Cell(0, 4), "23 30 35 34 32 0D");
    Find<QLineEdit>(*Form, "TextFilter").clear();

    Click(*Form, "PauseBtn");
    Pass(102);
    EXPECT_TRUE(Wait([this] { return Status().contains("1 more rows"); }));
    EXPECT_EQ(Rows(), 102);
    Click(*Form, "PauseBtn");
    EXPECT_EQ(Rows(), 103);
    Form->close();
    Click(*Form, "ClearBtn");
    EXPECT_EQ(Rows(), 0);
}

TEST_F(TrafficFormTest, ListensOnlyWhileNothingElseUsesTheLine) {
    for (const bool inUse : {true, false}) {
        LineInUse = inUse;
        Click(*Form, "ListenOnlyBtn");
        EXPECT_EQ(Find<QLabel>(*Form, "Notice").text().contains("The line is in use."), inUse);
    }
}

TEST_F(TrafficFormTest, CopiesSavesAndRecords) {
    const TestFolder folder;
    Table().selectRow(9);
    Trigger(*Form, "CopyAction");
    EXPECT_TRUE(QApplication::clipboard()->text().contains("\t7 (07H)\t9600\t$072<0D>\t\t\tsilent\t"));

    Find<QComboBox>(*Form, "OutcomeFilter").setCurrentIndex(1);
    Choose("SaveBtn", "SaveCsv", folder.Path("failures.csv"));
    EXPECT_TRUE(Wait([this] { return Status().startsWith("10 rows saved"); })) << Status().toStdString();
    EXPECT_EQ(std::ranges::count(Test.Files[folder.Path("failures.csv")], '\n'), 11);
    Test.Session.ReplaceFile = [](const std::string&, const std::string&) {
        throw RuntimeFailure("No space.");
    };
    Choose("SaveBtn", "SaveText", folder.Path("failures.txt"));
    EXPECT_TRUE(Wait([this] { return Find<QLabel>(*Form, "Notice").text().endsWith("No space."); }));

    Choose("RecordBtn", {}, folder.Path("there.jsonl"));
    EXPECT_EQ(Find<QAbstractButton>(*Form, "RecordBtn").text(), "Stop &recording");
    EXPECT_EQ(Test.Session.Line.Listeners.size(), 2U);
    Pass(1);
    Choose("SaveBtn", "SaveRecording", folder.Path("there.jsonl")); // to be replaced?
    Find<QMessageBox>(*Form, "ReplaceBox").button(QMessageBox::Yes)->click();
    EXPECT_TRUE(Find<QLabel>(*Form, "Notice").text().contains("is being recorded to"));
    Click(*Form, "RecordBtn");
    EXPECT_EQ(Test.Session.Line.Listeners.size(), 1U);
    EXPECT_EQ(std::ranges::count(folder.Read("there.jsonl"), '\n'), 2);
}

} // namespace
} // namespace kavro
