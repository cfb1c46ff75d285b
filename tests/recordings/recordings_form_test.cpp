// What windows that drive outputs, calibrate or send put on the line: bytes, order and pauses are those of
// the recordings in this folder. Where one is meant to change, the recording that a failing test leaves takes
// its place, by hand and after a look at what differs.

#include "calib/ad_calib_form.h"
#include "calib/da_calib_form.h"
#include "diag/da_diag_form.h"
#include "diag/dio_diag_form.h"
#include "diag/multi_diag_form.h"
#include "diag/n32_diag_form.h"
#include "diag/n46_diag_form.h"
#include "diag/panel_on_line.h"
#include "terminal/terminal_form.h"
#include "terminal/test_folder.h"
#include "traffic/recorder.h"

#include <QFileDialog>
#include <QScrollBar>

namespace kavro {
namespace {

/// The demo line with some of its modules in the list, and what passes on it recorded.
struct RecordedLine : SimulatedSession {
    explicit RecordedLine(const std::string& path)
        : SimulatedSession(DemoLine()),
          Recording(OpenAppendFile, path, {.Utc = Time.UtcMicroseconds(), .Device = "demo"},
                    {.Overwrite = true}) {
        Session.Line.Listeners.push_back(&Recording);
    }

    /// Puts a module into the list and selects it.
    void Know(const ModuleRecord& record) {
        Session.SelectedModule = Session.ModuleCount++;
        Session.ModuleTable[Session.SelectedModule] = record;
        Session.ScanIndex = -1;
    }

    Recorder Recording;
};

const ModuleRecord AlarmInput = {
    .Address = 1, .Model = "8210  ", .AlarmMode = 2, .BaudCode = 3, .InputRange = 5};
const ModuleRecord Voltages = {.Address = 5, .Model = "8250  ", .BaudCode = 3, .InputRange = 8};
const ModuleRecord Temperatures = {
    .Address = 6, .Model = "8260  ", .BaudCode = 3, .InputRange = 15, .Checksum = 1};
const ModuleRecord Current = {
    .Address = 8, .Model = "8310  ", .DataFormat = 1, .BaudCode = 3, .InputRange = 49};
const ModuleRecord FourVoltages = {.Address = 9, .Model = "8320  ", .BaudCode = 3, .InputRange = 51};
const ModuleRecord WithChecksum = {.Address = 16, .Model = "8470  ", .BaudCode = 3, .Checksum = 1};
const ModuleRecord InOut = {.Address = 14, .Model = "8450  ", .BaudCode = 3};
const ModuleRecord Ports = {.Address = 15, .Model = "8460  ", .BaudCode = 3};
const ModuleRecord Fast = {.Address = 32, .Model = "8480  ", .BaudCode = 4};

/// Lets all that is due happen; a panel has then nothing left to do.
void Settle(QDialog& form) {
    auto* panel = dynamic_cast<PanelForm*>(&form);
    for (int turn = 0; turn < 3 || (panel && panel->Busy()); ++turn)
        QApplication::processEvents();
}

/// "Name=value" moves a bar or fills an entry, "tick" is the panel's timer, "silent" and "heard" are the
/// module's, "enter" is the key in the terminal, "wait" a tenth of a second; anything else is a click.
void Act(RecordedLine& line, QDialog& form, const QString& action) {
    const QString name = action.section('=', 0, 0);
    const QString value = action.section('=', 1);
    if (action == "tick")
        Tick(dynamic_cast<PanelForm&>(form));
    else if (action == "silent" || action == "heard")
        line.Line.LineFaults.Silent = action == "silent";
    else if (action == "enter")
        Type(Find<QLineEdit>(form, "CmdText"), "\r");
    else if (action == "wait")
        line.Time.Sleep(100);
    else if (auto* bar = form.findChild<QScrollBar*>(name))
        bar->setValue(value.toInt());
    else if (action.contains('='))
        Find<QLineEdit>(form, name).setText(value);
    else
        Click(form, action);
    Settle(form);
}

template <class Form>
void Drive(RecordedLine& line, const QStringList& actions) {
    Form form(line.Session, line.Messages, nullptr);
    if (auto* panel = dynamic_cast<PanelForm*>(static_cast<QDialog*>(&form)))
        StopTimer(*panel);
    form.show();
    Settle(form);
    for (const QString& action : actions)
        Act(line, form, action);
    EXPECT_FALSE(form.isVisible());
    EXPECT_TRUE(line.Messages.Shown.empty());
}

/// The terminal, with its dialogs in the order in which they come up.
void DriveTerminal(RecordedLine& line, const QStringList& actions) {
    const TestFolder folder;
    const std::string file = folder.Write("batch", "$052\r\n; $062\r\n\r\n   \n #056 \n$002\n$202\n$FE2");
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    DialogDriver dialogs({{"FileDialog",
                           [&](QDialog& dialog) {
                               Find<QLineEdit>(dialog, "fileNameEdit").setText(QString::fromStdString(file));
                               dialog.accept();
                           }},
                          {"RepeatCmdForm",
                           [](QDialog& dialog) {
                               Find<QLineEdit>(dialog, "RepeatCmd").setText("$052 and what is cut off");
                               Find<QLineEdit>(dialog, "RepeatTimes").setText("3");
                               Click(dialog, "OKBtn");
                           }},
                          {"RepeatForm", [](QDialog& dialog) {
                               Find<QLineEdit>(dialog, "RepeatTimes").setText("2");
                               Click(dialog, "OKBtn");
                           }}});
    Drive<TerminalForm>(line, actions);
    EXPECT_TRUE(dialogs.Finished());
}

const QStringList CurrentSteps = {"NextBtn",   "NextBtn", "NextBtn",     "TrimUpBtn", "TrimUpBtn",
                                  "TrimUpBtn", "NextBtn", "TrimDownBtn", "BackBtn"};

struct Recorded {
    const char* File;
    std::vector<ModuleRecord> Modules; ///< the last one is selected
    void (*Drive)(RecordedLine& line, const QStringList& actions);
    QStringList Actions;
};

const Recorded Recordings[] = {
    {"output",
     {Current},
     Drive<DaDiagForm>,
     {"DaScroll=100", "wait", "DaScroll=32760", "DaScroll=7", "silent", "DaScroll=800", "heard", "DaScroll=0",
      "wait", "ExitBtn"}},
    {"outputs",
     {FourVoltages},
     Drive<N32DiagForm>,
     {"tick", "DaScroll_0=100", "wait", "tick", "DaScroll_2=-32760", "silent", "tick", "DaScroll_3=9",
      "heard", "tick", "ExitBtn"}},
    {"digital",
     {InOut},
     Drive<DioDiagForm>,
     {"wait", "tick", "Output_3", "tick", "OutputAllOn", "Output_7", "silent", "tick", "Output_0", "heard",
      "wait", "tick", "wait", "wait", "wait", "wait", "tick", "OutputAllOff", "ExitBtn"}},
    {"digital_checksum", {WithChecksum}, Drive<DioDiagForm>, {"wait", "tick", "Output_1", "tick", "ExitBtn"}},
    {"ports",
     {Ports},
     Drive<N46DiagForm>,
     {"wait", "tick", "PortB_2", "wait", "tick", "PortCLAllOn", "AllOff", "tick", "ExitBtn"}},
    {"alarm",
     {AlarmInput},
     Drive<MultiDiagForm>,
     {"wait", "tick", "ClearBtn", "tick", "silent", "tick", "heard", "ExitBtn"}},
    {"calibrate_input",
     {Voltages},
     Drive<AdCalibForm>,
     {"NextBtn", "OffsetBtn", "NextBtn", "BackBtn", "SpanBtn", "NextBtn", "silent", "NextBtn", "heard",
      "BackBtn", "ExitBtn"}},
    {"calibrate_cjc",
     {Temperatures},
     Drive<AdCalibForm>,
     {"NextBtn", "CJCBtn", "CJCInput=25.5", "NextBtn", "BackBtn", "OffsetBtn", "NextBtn", "ExitBtn"}},
    {"calibrate_output", {Current}, Drive<DaCalibForm>, CurrentSteps + QStringList{"NextBtn", "NextBtn"}},
    {"calibrate_output_left", {Current}, Drive<DaCalibForm>, CurrentSteps + QStringList{"ExitBtn"}},
    {"calibrate_output_silent",
     {Current},
     Drive<DaCalibForm>,
     {"NextBtn", "NextBtn", "NextBtn", "silent", "TrimUpBtn", "NextBtn", "heard", "NextBtn"}},
    {"terminal",
     {Fast, Temperatures, Voltages},
     DriveTerminal,
     {"CmdText=$052",
      "enter",
      "wait",
      "CmdText=$202",
      "enter",
      "CmdText= $202",
      "enter",
      "CmdText=",
      "enter",
      "CheckSumEnable",
      "CmdText=$062",
      "enter",
      "CmdText=$002",
      "enter",
      "CmdText=~",
      "enter",
      "CmdText=; no comment",
      "enter",
      "CheckSumEnable",
      "CmdText=#05x",
      "enter",
      "CmdText=$FE2",
      "enter",
      "BatchDialogBtn",
      "RepeatCmdBtn",
      "StepBatchBtn",
      "StepBatchBtn",
      "StepBatchBtn",
      "StepBatchBtn",
      "StepBatchBtn",
      "GoTopBtn",
      "StepBatchBtn",
      "CheckSumEnable",
      "RepeatBtn",
      "RunBatchBtn",
      "StepBatchBtn",
      "ExitBtn"}},
};

Lines LinesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    Lines lines;
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

TEST(Recordings, WindowsDoOnTheLineWhatTheyDid) {
    for (const Recorded& recorded : Recordings) {
        SCOPED_TRACE(recorded.File);
        const std::string name = std::string(recorded.File) + ".jsonl";
        const std::string now =
            testing::TempDir() + "kavro-recorded-" + std::to_string(getpid()) + "-" + name;
        {
            RecordedLine line(now);
            for (const ModuleRecord& module : recorded.Modules)
                line.Know(module);
            recorded.Drive(line, recorded.Actions);
            line.Session.Line.Exchange("$012", 0, 3, 100); // when, in the end, the line is free again
            line.Recording.End();
        }
        const Lines before = LinesOf(KAVRO_RECORDINGS "/" + name);
        const Lines after = LinesOf(now);
        EXPECT_EQ(after.size(), before.size()) << "see " << now;
        for (std::size_t i = 1; i < std::min(before.size(), after.size());
             ++i) // the first line has the version
            ASSERT_EQ(after[i], before[i]) << name << ", line " << i + 1 << ", see " << now;
        if (after.size() == before.size())
            std::filesystem::remove(now);
    }
}

} // namespace
} // namespace kavro
