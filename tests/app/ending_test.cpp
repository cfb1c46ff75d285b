#include "app/ending.h"

#include "app/message_boxes.h"
#include "app/module_dialogs.h"
#include "map/kavro_form.h"
#include "ports/termination_signals.h"
#include "support/form_driver.h"
#include "support/program_run.h"

#include <QFile>
#include <QThread>

#include <csignal>

#include <unistd.h>

namespace kavro {
namespace {

/// The main window on the demo line, with the analog output module at 08 in its list, and a descriptor that
/// asks it to end.
struct EndingProgram : SimulatedSession {
    EndingProgram() : SimulatedSession(DemoLine()) {
        EXPECT_EQ(pipe(Requests), 0);
        EnableBaudCodes(Session, {3});
        Select(Session, {.Address = 8, .Model = FixedText("8310", 6), .InputRange = 0x31});
        DialogOpeners openers;
        openers.Module = [this](ModuleDialog dialog, QWidget* parent) {
            OpenModuleDialog(dialog, Session, Boxes, parent);
        };
        Form = std::make_unique<KavroForm>(Session, Boxes, Devices, openers);
        Ending.emplace(Requests[0], *Form, Session);
        Form->show();
    }
    ~EndingProgram() {
        TerminationSignals::EndWithin(0);
        for (const int end : Requests)
            close(end);
    }
    void AskToEnd() { EXPECT_EQ(write(Requests[1], "!", 1), 1); }

    int Requests[2] = {};
    FakeDevices Devices;
    MessageBoxes Boxes;
    std::unique_ptr<KavroForm> Form;
    std::optional<kavro::Ending> Ending;
};

TEST(Ending, LeavesWhateverIsUpInOrder) {
    constexpr int Range = 0x31, Calibrated = 0x30;
    struct Case {
        const char* Item;   // of the menu
        const char* Dialog; // that it brings up
        std::function<void(EndingProgram&, QDialog&)> Act = [](EndingProgram&, QDialog&) {};
        int Exit = 0;
        int TypeCode = Range; // of the module at 08 afterwards
    };
    const auto next = [](int times) {
        return [times](EndingProgram&, QDialog& form) {
            for (int i = 0; i < times; ++i)
                Click(form, "NextBtn");
        };
    };
    const auto lose = [](EndingProgram& program, QDialog&) { program.Line.Unplug(); };
    const auto silence = [](EndingProgram& program, QDialog&) {
        program.Line.ModuleAt(8).OwnFaults.Silent = true;
    };
    const auto leaveAsked = [](EndingProgram& program, QDialog& form) {
        program.Line.Unplug();
        QTimer::singleShot(0, &form, [&] { // behind the question whether to leave without restoring
            program.Line.Plug();
            program.AskToEnd();
        });
        Click(form, "ExitBtn");
    };
    const Case cases[] = {{"mnuAbout", "AboutForm"},
                          {"mnuExit", "ExitForm"},
                          {"mnuComPort", "ComPortForm"},
                          {"mnuSave", "SaveDialog"},
                          {"mnuConfiguration", "DaConfigForm"},
                          {"mnuDiagnostic", "DaDiagForm"},
                          {"mnuCalibration", "DaCalibForm"},
                          {"mnuCalibration", "DaCalibForm", next(4)},
                          {"mnuCalibration", "DaCalibForm", leaveAsked},
                          {"mnuCalibration", "DaCalibForm", lose, 1, Calibrated},
                          {"mnuCalibration", "DaCalibForm", silence, 1, Calibrated}};
    for (const auto& [item, dialog, act, exit, typeCode] : cases) {
        EndingProgram program;
        DialogDriver driver({{dialog, [&](QDialog& form) {
                                  act(program, form);
                                  for (int i = 0; i < 2; ++i) // the second request changes nothing
                                      program.AskToEnd();
                              }}});
        QTimer::singleShot(0, program.Form.get(), [&] { Trigger(*program.Form, item); });
        EXPECT_EQ(QApplication::exec(), exit) << item;
        EXPECT_TRUE(driver.Finished());
        EXPECT_EQ(program.Line.ModuleAt(8).Settings.TypeCode, typeCode) << item;
        EXPECT_TRUE(program.Files.contains("admin.map"));
        EXPECT_FALSE(program.Form->isVisible());
    }
}

// A search, whose transactions leave no time to the event loop, and the messages behind it.
TEST(Ending, StopsASearch) {
    EndingProgram program;
    DialogDriver driver({{"SearchForm", [](QDialog& form) { Click(form, "OKBtn"); }}});
    program.Line.Log = [&](const LineEvent& event) {
        if (event.Command == "$032")
            program.AskToEnd();
    };
    QTimer::singleShot(0, program.Form.get(), [&] { Trigger(*program.Form, "mnuSearch"); });
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_GE(program.Session.ModuleCount, 3);
    EXPECT_TRUE(program.Files.contains("admin.map"));
}

// Whether the process has opened a pseudo-terminal; by then it listens to signals.
bool HasOpenedItsPort(qint64 process) {
    for (const QFileInfo& file :
         QDir(QString("/proc/%1/fd").arg(process)).entryInfoList(QDir::System | QDir::Files))
        if (file.symLinkTarget().startsWith("/dev/pts/"))
            return true;
    return false;
}

TEST(Ending, EndsTheProgramInOrderBySignals) {
    QTemporaryDir folder;
    ServedLine line;
    const QString device = line.Line("/dev/");
    const std::vector<int> requests[] = {{SIGTERM}, {SIGHUP}, {SIGINT, SIGTERM, SIGTERM}};
    for (const std::vector<int>& numbers : requests) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("XDG_CONFIG_HOME", folder.path());
        QProcess kavro;
        kavro.setProcessEnvironment(environment);
        kavro.setWorkingDirectory(folder.path());
        kavro.setStandardInputFile(QProcess::nullDevice());
        kavro.start(KAVRO_PROGRAM, {"--port", "1=" + device});
        ASSERT_TRUE(kavro.waitForStarted());
        for (int wait = 0; wait < 500 && !HasOpenedItsPort(kavro.processId()); ++wait)
            QThread::msleep(20);
        for (const int number : numbers)
            EXPECT_EQ(kill(static_cast<pid_t>(kavro.processId()), number), 0);
        EXPECT_TRUE(kavro.waitForFinished(20000));
        EXPECT_EQ(kavro.exitStatus(), QProcess::NormalExit) << numbers[0];
        EXPECT_EQ(kavro.exitCode(), 0);
        EXPECT_FALSE(kavro.readAllStandardError().contains("kavro: "));
        for (const char* file : {"kavro/COM.CFG", "admin.map"})
            EXPECT_TRUE(QFile::remove(folder.filePath(file))) << numbers[0] << file;
    }
}

} // namespace
} // namespace kavro
