// A random clicker: the real windows on the simulated line, in one process, with clicks, keys and wheel at
// random, while the line is unplugged and plugged in and its modules fail at random moments.
//
//     clicker_bench [SEED [SECONDS]]
//
// The line runs in virtual time, so that nothing is waited for; timers of the windows are made to fire by the
// clicker. Worth most in a build with sanitizers (-DKAVRO_SANITIZE=ON). What must hold: nothing crashes or
// hangs; in the main window list and modules agree; an output module whose calibration was ended has its
// configuration back, unless a fault came between; at the end every dialog can be closed.

#include "app/message_boxes.h"
#include "app/module_dialogs.h"
#include "bench/clicker.h"
#include "bench/scratch_folder.h"
#include "map/kavro_form.h"
#include "map/list_line.h"
#include "monitor/monitor_form.h"
#include "ports/replace_file.h"
#include "sim/demo_line.h"
#include "support/form_driver.h"
#include "support/test_session.h"
#include "terminal/terminal_form.h"

#include <QDir>
#include <QListWidget>
#include <QMessageBox>
#include <QThread>

#include <deque>
#include <set>

namespace kavro {

namespace {

constexpr int LongestStepSeconds = 60;
constexpr int LastActions = 25;       // told with a finding
constexpr int TicksToWindDown = 4000; // more than any chain of dialogs and messages needs

/// The program on a line of its own, without the devices of this machine.
struct ClickedProgram : SimulatedSession {
    ClickedProgram() : SimulatedSession(DemoLine()) {
        Session.ReplaceFile = ReplaceFile;
        Session.ConfigFilePath = QDir::current().filePath("COM.CFG").toStdString();
        DialogOpeners openers;
        openers.Module = [this](ModuleDialog dialog, QWidget* parent) {
            OpenModuleDialog(dialog, Session, Boxes, parent);
        };
        openers.Terminal = [this](QWidget* parent) { TerminalForm(Session, Boxes, parent).exec(); };
        openers.Monitor = [this](QWidget* parent) { MonitorForm(Session, Boxes, parent).exec(); };
        Form = std::make_unique<KavroForm>(Session, Boxes, Devices, openers);
    }

    MessageBoxes Boxes;
    FakeDevices Devices;
    std::unique_ptr<KavroForm> Form;
};

class Clicker {
public:
    explicit Clicker(RandomRun& run) : run_(run), dice_(run.Seed()) {
        // From outside of its own slot: a timer does not fire while its slot has a dialog up.
        QObject::connect(&timer_, &QTimer::timeout, [this] {
            if (!pending_)
                QMetaObject::invokeMethod(
                    &timer_, [this] { Act(); }, Qt::QueuedConnection);
            pending_ = true;
        });
        timer_.start(0);
    }

    /// Runs the program again and again until the time is over.
    void Run() {
        while (!over_) {
            program_ = std::make_unique<ClickedProgram>();
            QMetaObject::invokeMethod(
                program_->Form.get(),
                [this] {
                    program_->Form->Load(std::nullopt);
                    program_->Form->show();
                },
                Qt::QueuedConnection);
            QApplication::exec();
            ++Programs;
            CheckNothingLeft();
            program_.reset();
        }
    }

    std::map<QString, int> Dialogs; ///< how often each was met
    int Programs = 0;

private:
    void Act() {
        pending_ = false;
        QWidget* const modal = QApplication::activeModalWidget();
        // A search lets events run hundreds of times: most searches are to come to their end.
        const std::int64_t now = program_->Time.Microseconds();
        const bool onward = std::exchange(seenAt_, now) != now;
        if (!over_ && modal && modal->objectName() == "ScanForm" && !(onward && dice_.Chance(0.01)))
            return;
        over_ = !run_.Next() || over_;
        if (over_)
            return WindDown();
        CheckCalibration();
        CheckList();
        if (dice_.Chance(0.01))
            return ChangeLine();
        if (dice_.Chance(0.1))
            return FireTimers();
        if (QWidget* const popup = QApplication::activePopupWidget())
            return ActOnPopup(*popup);
        if (auto* dialog = qobject_cast<QDialog*>(modal))
            ActOnDialog(*dialog);
        else if (program_->Form->isVisible())
            ActOnMainWindow();
    }

    void Did(const QString& what) {
        actions_.push_back(what.toStdString());
        if (actions_.size() > LastActions)
            actions_.pop_front();
        std::string report;
        for (const std::string& action : actions_)
            report += "\n    " + action;
        run_.Note(report);
    }

    // What is about to happen is noted before, as a finding in it would be told without it.
    void ActOn(QWidget& window) {
        const auto* box = qobject_cast<QMessageBox*>(&window);
        Did("act on " + (box ? "the message \"" + box->text() + "\"" : window.objectName()));
        const QString did = ActOnWindow(window, dice_);
        actions_.back() += ": " + did.toStdString();
    }

    void ActOnPopup(QWidget& popup) {
        if (dice_.Chance(0.3))
            popup.close();
        else
            ActOn(popup);
    }

    void ActOnDialog(QDialog& dialog) {
        const QString name = qobject_cast<QMessageBox*>(&dialog) ? "a message" : dialog.objectName();
        if (met_ != &dialog) {
            met_ = &dialog;
            ++Dialogs[name.isEmpty() ? dialog.metaObject()->className() : name];
        }
        if (AnswerSystemDialog(dialog, dice_))
            return Did("answer a system dialog");
        if (name == "SearchForm" && dice_.Chance(0.3)) {
            Did("search");
            Find<QLineEdit>(dialog, "HiAddress").setText(dice_.Chance(0.9) ? "24" : "255");
            Click(dialog, "OKBtn");
        } else if (name == "ExitForm" && dice_.Chance(0.7)) { // or every second action would be a new program
            Did("stay");
            dialog.reject();
        } else {
            ActOn(dialog);
        }
    }

    void ActOnMainWindow() {
        KavroForm& form = *program_->Form;
        auto& list = Find<QListWidget>(form, "Device");
        constexpr const char* Operations[] = {"mnuConfiguration", "mnuDiagnostic", "mnuCalibration"};
        constexpr const char* Items[] = {"mnuSave",        "mnuPrint",         "mnuComPort", "mnuSearch",
                                         "mnuTerminal",    "mnuConfiguration", "mnuMonitor", "mnuDiagnostic",
                                         "mnuCalibration", "mnuAbout",         "mnuExit"};
        const int count = list.count();
        if (count == 0 && dice_.Chance(0.5)) {
            MakeWell(); // or there would be little to click at
            TriggerItem("mnuSearch");
        } else if (count > 0 && dice_.Chance(0.7)) {
            list.setCurrentRow(static_cast<int>(dice_.Below(static_cast<std::size_t>(count))));
            TriggerItem(dice_.Of(Operations));
        } else if (dice_.Chance(0.3)) {
            TriggerItem(dice_.Of(Items));
        } else {
            ActOn(form);
        }
    }

    void TriggerItem(const char* name) {
        Did(QString("menu ") + name);
        Trigger(*program_->Form, name);
    }

    // The time passes for every timer of the windows.
    void FireTimers() {
        Did("timers");
        program_->Time.Sleep(static_cast<int>(dice_.Below(1000)));
        QList<QPointer<QTimer>> timers;
        for (QWidget* window : QApplication::topLevelWidgets())
            for (auto* timer : window->findChildren<QTimer*>())
                timers << timer;
        for (const QPointer<QTimer>& timer : timers)
            if (timer && timer->isActive()) {
                QTimerEvent event(timer->timerId());
                QApplication::sendEvent(timer, &event);
            }
    }

    void ChangeLine() {
        SimulatedLine& line = program_->Line;
        constexpr Faults LineFaults[] = {
            {.Silent = true},       {.DelayMs = 150},     {.NoCarriageReturn = true},
            {.Noise = true},        {.Refuse = true},     {.SlowCharacterMs = 90},
            {.WrongAddress = true}, {.Echo = true},       {.Late = {.Share = 0.3, .MinMs = 50, .MaxMs = 400}},
            {.Babble = true},       {.DamageShare = 0.3}, {.WrongChecksum = true}};
        auto& module = *dice_.Of(line.Modules());
        if (dice_.Chance(0.5)) {
            MakeWell();
        } else if (dice_.Chance(0.3)) {
            Did("the line is unplugged");
            line.Unplug();
        } else if (dice_.Chance(0.5)) {
            Did("a fault of the line");
            const bool plugged = line.Plugged();
            line.LineFaults = dice_.Of(LineFaults);
            line.LineFaults.Unplugged = !plugged;
        } else {
            Did("a fault of a module");
            module.OwnFaults = dice_.Of(LineFaults);
        }
        calibrated_.Disturbed = true;
    }

    void MakeWell() {
        Did("the line is well");
        program_->Line.Plug();
        program_->Line.LineFaults = {};
        for (const auto& module : program_->Line.Modules())
            module->OwnFaults = {};
    }

    bool LineIsWell() const {
        const Faults well;
        const auto isWell = [](const Faults& faults) {
            return !faults.Silent && faults.DelayMs == 0 && !faults.WrongChecksum &&
                   !faults.NoCarriageReturn && !faults.Noise && faults.SlowCharacterMs == 0 &&
                   !faults.Refuse && !faults.WrongAddress && !faults.Unplugged && !faults.Echo &&
                   faults.Late.Share == 0 && !faults.Babble && faults.DamageShare == 0;
        };
        return isWell(program_->Line.LineFaults) &&
               std::ranges::all_of(program_->Line.Modules(),
                                   [&](const auto& module) { return isWell(module->OwnFaults); });
    }

    // Configurations of the output modules, as they report them.
    std::string OutputConfigs() const {
        std::string configs;
        for (const auto& module : program_->Line.Modules())
            if (module->Settings.Model.starts_with("83"))
                configs += ' ' + std::to_string(module->Settings.TypeCode) + ',' +
                           std::to_string(module->Settings.DataFormat);
        return configs;
    }

    static QDialog* CalibrationUp() {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (window->objectName() == "DaCalibForm" && window->isVisible())
                return qobject_cast<QDialog*>(window);
        return nullptr;
    }

    // A calibration is first seen when its module is set up already, so what was before is kept all the time.
    void CheckCalibration() {
        const bool up = CalibrationUp() != nullptr;
        if (!up && calibrated_.Up && !calibrated_.Disturbed && OutputConfigs() != calibrated_.Before)
            run_.Fail("an output module was not restored:" + calibrated_.Before + " ->" + OutputConfigs() +
                      Story());
        if (!up)
            calibrated_ = {.Up = false, .Disturbed = !LineIsWell(), .Before = OutputConfigs()};
        calibrated_.Up = up;
    }

    // What the main window shows while nothing runs is what is known.
    void CheckList() {
        const auto& session = program_->Session;
        // A dialog that is hidden may still be on its way back to the window.
        if (QThread::currentThread()->loopLevel() > 1 || !program_->Form->isVisible())
            return;
        const auto& list = Find<QListWidget>(*program_->Form, "Device");
        bool agree = list.count() == session.ModuleCount &&
                     session.Device.size() == static_cast<std::size_t>(session.ModuleCount);
        for (int row = 0; agree && row < list.count(); ++row) {
            const std::string line = BuildListLine(session, row);
            agree = list.item(row)->text().toStdString() == line &&
                    session.Device[static_cast<std::size_t>(row)] == line;
            if (!agree)
                run_.Fail("line " + std::to_string(row) + " shows \"" + list.item(row)->text().toStdString() +
                          "\", but the module is \"" + line + "\"" + Story());
        }
        if (!agree)
            run_.Fail("the list has " + std::to_string(list.count()) + " lines, the session " +
                      std::to_string(session.ModuleCount) + " modules" + Story());
    }

    std::string Story() const {
        std::string story;
        for (const std::string& action : actions_)
            story += "\n    " + action;
        return story;
    }

    // The line is well and everything is closed; the program must come to its end.
    void WindDown() {
        if (windDown_++ == 0)
            MakeWell();
        if (windDown_ > TicksToWindDown)
            run_.Fail("a window cannot be closed" + Story());
        if (QWidget* const popup = QApplication::activePopupWidget()) {
            popup->close();
        } else if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
            Did("close " + dialog->objectName() + " " + dialog->windowTitle());
            if (dialog->objectName() == "ExitForm")
                Click(*dialog, "YesBtn");
            else if (qobject_cast<QMessageBox*>(dialog))
                dialog->accept();
            else
                dialog->close();
        } else {
            Did("close the program");
            program_->Form->close();
        }
    }

    void CheckNothingLeft() {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (window->isVisible())
                run_.Fail("left over: " + window->objectName().toStdString() + " " +
                          window->metaObject()->className() + Story());
    }

    struct Calibrated {
        bool Up = false, Disturbed = false;
        std::string Before = {};
    };

    RandomRun& run_;
    Dice dice_;
    QTimer timer_;
    std::unique_ptr<ClickedProgram> program_;
    std::deque<std::string> actions_;
    const QDialog* met_ = nullptr;
    std::int64_t seenAt_ = 0;
    Calibrated calibrated_;
    bool pending_ = false, over_ = false;
    int windDown_ = 0;
};

} // namespace

} // namespace kavro

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
        if (!text.startsWith(
                "This plugin does not support")) // so the offscreen platform says of every window
            std::fprintf(stderr, "%s\n", text.toStdString().c_str());
    });
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const kavro::ScratchFolder folder; // what is saved goes there
    QDir::setCurrent(QString::fromStdString(folder.Path));
    QFile batch("batch.txt");
    if (batch.open(QIODevice::WriteOnly))
        batch.write("$012\n#050\n\n@01DI\n$022B7\n");
    batch.close();

    kavro::RandomRun run("clicker_bench", argc, argv, kavro::LongestStepSeconds);
    run.StepsAlone = false;
    kavro::Clicker clicker(run);
    clicker.Run();
    std::printf("clicker: seed %llu, %llu actions, %d starts, no finding; met",
                static_cast<unsigned long long>(run.Seed()), static_cast<unsigned long long>(run.Steps()),
                clicker.Programs);
    for (const auto& [name, count] : clicker.Dialogs)
        std::printf(" %s %d", name.toStdString().c_str(), count);
    std::printf("\n");
}
