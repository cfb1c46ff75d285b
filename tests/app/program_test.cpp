#include "app/program.h"

#include "support/form_driver.h"
#include "support/full_disk.h"
#include "support/program_run.h"

#include <QFile>
#include <QListWidget>
#include <QMessageBox>

namespace kavro {
namespace {

TEST(Program, AnswersTheCommandLineWithoutADisplay) {
    EXPECT_TRUE(ProgramRun(KAVRO_PROGRAM).Run({"--version"}).Out.starts_with("kavro 4.01 (build 4.01-"));
    const Outcome help = ProgramRun(KAVRO_PROGRAM).Run({"--help"});
    EXPECT_EQ(std::tuple(help.Exit, help.Err), std::tuple(0, ""));
    EXPECT_TRUE(Contains(help.Out, "--port"));
    for (const QStringList& wrong : {QStringList{"--bogus"}, {"file"}, {"--port", "9=x"}, {"--port", "1="}}) {
        const Outcome outcome = ProgramRun(KAVRO_PROGRAM).Run(wrong);
        EXPECT_EQ(outcome.Exit, 2) << wrong.join(' ').toStdString();
        EXPECT_EQ(std::ranges::count(outcome.Err, '\n'), 1) << outcome.Err;
        EXPECT_TRUE(outcome.Err.starts_with("kavro: "));
    }
    EXPECT_EQ(ProgramRun(KAVRO_PROGRAM).Run({}).Exit, 1);
}

QWidget* MainWindow() {
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (widget->objectName() == "KavroForm")
            return widget;
    return nullptr;
}

// One message names every file that could not be saved, and then the program ends.
TEST(Program, TellsAtTheEndWhatAFullDiskDidNotTake) {
    FullDisk disk;
    qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(disk.Path("")));
    std::string told;
    for (const bool full : {false, true}) {
        Program program({.Demo = true, .Devices = {{1, SimulatedLineDevice}}});
        program.Start();
        QWidget* form = MainWindow();
        const DialogDriver::Step yes = {"ExitForm", [](QDialog& dialog) { Click(dialog, "YesBtn"); }};
        const DialogDriver::Step message = {"", [&](QDialog& dialog) {
                                                told = static_cast<QMessageBox&>(dialog).text().toStdString();
                                                form->close(); // asks no second time
                                                dialog.accept();
                                            }};
        DialogDriver driver(full ? std::vector{yes, message} : std::vector{yes});
        QTimer::singleShot(0, form, [form] { form->close(); });
        if (full)
            disk.Fill();
        EXPECT_EQ(QApplication::exec(), 0);
        EXPECT_TRUE(driver.Finished());
        EXPECT_FALSE(form->isVisible());
    }
    for (const char* file : {"kavro/demo/COM.CFG", "kavro/demo/admin.map"}) {
        EXPECT_TRUE(Contains(told, disk.Path(file) + " cannot be saved: " + disk.Reason()));
        EXPECT_FALSE(disk.Read(file).empty());
    }
    disk.MakeRoom();
}

TEST(Program, TellsOnceThatARecordingFailed) {
    TestFolder folder;
    qputenv("XDG_CONFIG_HOME", folder.Path().c_str());
    const std::string path = folder.Path("line");
    Program program(
        {.Demo = true, .Devices = {{1, SimulatedLineDevice}}, .Recording = {.Path = path, .Options = {}}});
    program.Start();
    DialogDriver driver({{"SearchForm",
                          [](QDialog& dialog) {
                              Find<QLineEdit>(dialog, "HiAddress").setText("2");
                              Click(dialog, "OKBtn");
                          }},
                         {"", [&](QDialog& dialog) {
                              const QString told = static_cast<QMessageBox&>(dialog).text();
                              EXPECT_TRUE(Contains(told.toStdString(), path + "\" cannot be written: File"));
                              dialog.accept();
                          }}});
    FullDisk::Limit(500);
    Trigger(*MainWindow(), "mnuSearch");
    FullDisk::Limit(RLIM_INFINITY);
    EXPECT_TRUE(driver.Finished());
    EXPECT_EQ(folder.Read("line").size(), 500u);
    EXPECT_EQ(Find<QListWidget>(*MainWindow(), "Device").count(), 2);
}

// The whole program on a pseudo-terminal: start, search, exit, and the settings read back at the next start.
TEST(Program, SearchesAPortAndKeepsItsSettings) {
    QTemporaryDir folder;
    qputenv("XDG_CONFIG_HOME", folder.path().toLocal8Bit());
    QDir::setCurrent(folder.path()); // admin.map goes there
    ServedLine line;
    const Options options{.Devices = {{1, line.Line("/dev/").toStdString()}}};
    for (const char* timeout : {"100", "150"}) {
        Program program(options);
        program.Start();
        QWidget* form = MainWindow();
        DialogDriver driver({{"ComPortForm",
                              [&](QDialog& dialog) {
                                  EXPECT_EQ(Find<QLineEdit>(dialog, "Timeout").text(), timeout);
                                  Find<QLineEdit>(dialog, "Timeout").setText("150");
                                  Click(dialog, "OKBtn");
                              }},
                             {"", [](QDialog& complete) { complete.accept(); }},
                             {"SearchForm",
                              [](QDialog& dialog) {
                                  Find<QLineEdit>(dialog, "HiAddress").setText("2");
                                  Click(dialog, "OKBtn");
                              }},
                             {"ExitForm", [](QDialog& dialog) { Click(dialog, "YesBtn"); }}});
        QTimer::singleShot(0, form, [form] {
            Trigger(*form, "mnuComPort");
            Trigger(*form, "mnuSearch");
            const auto& list = Find<QListWidget>(*form, "Device");
            EXPECT_EQ(list.count(), 2);
            EXPECT_EQ(list.item(0)->text(), "   1(01H)   8210      9600        V        +/- 2.5V        ");
            form->close();
        });
        EXPECT_EQ(QApplication::exec(), 0); // ended by the exit question
        EXPECT_TRUE(driver.Finished());
        EXPECT_FALSE(form->isVisible());
    }
    QFile config(folder.filePath("kavro/COM.CFG"));
    ASSERT_TRUE(config.open(QIODevice::ReadOnly));
    EXPECT_EQ(config.readAll(), "150\n1\nn,8,1\n9600\n");
    EXPECT_TRUE(QFile::exists(folder.filePath("admin.map")));
}

} // namespace
} // namespace kavro
