#include "app/program.h"

#include "app/module_dialogs.h"
#include "link/network_address.h"
#include "link/runtime_failure.h"
#include "loop/loop_start_form.h"
#include "monitor/monitor_form.h"
#include "ports/append_file.h"
#include "ports/check_json.h"
#include "ports/kept_history.h"
#include "ports/map_reader.h"
#include "ports/preferences_file.h"
#include "ports/replace_file.h"
#include "ports/settings_folder.h"
#include "ports/user_name.h"
#include "project/line_file_operations_form.h"
#include "project/open_line_file.h"
#include "project/replace_form.h"
#include "project/report_form.h"
#include "sim/demo_line.h"
#include "sim/simulated_port.h"
#include "terminal/terminal_form.h"
#include "traffic/line_check_form.h"
#include "traffic/listen_form.h"

#include <QLocale>

namespace kavro {

namespace {

constexpr std::int16_t DemoPort = 1;
constexpr const char* ClosedPortAdvice = "Another port can be chosen under Network > ComPort.";

// Second character of 1.2 as the user's locale writes it.
std::string LocaleDecimalSeparator() {
    return QLocale().toString(1.2, 'f', 1).mid(1, 1).toStdString();
}

} // namespace

Program::Program(const Options& options, int endRequests)
    : options_(options), simulatedLine_(DemoLine()),
      registry_(
          PortsFilePath(options.Demo), options.Devices,
          [this] { return std::make_unique<SimulatedPort>(simulatedLine_, clock_); }, ClosedPortAdvice),
      session_(registry_.Ports(), clock_), form_(session_, messages_, registry_, Openers()),
      ending_(endRequests, form_, session_) {
    session_.Line.Listeners.push_back(&traffic_); // so that the window shows what happened before it opened
    session_.ConfigFilePath = ConfigFilePath(options.Demo);
    session_.MapFilePath = MapFilePath(options.Demo);
    session_.DecimalSeparator = LocaleDecimalSeparator();
    session_.UserName = UserName();
    session_.ReplaceFile = ReplaceFile;
    session_.LineEnd = SystemLineEnd;
    session_.OpenFile = OpenAppendFile;
    const std::string preferencesPath = PreferencesFilePath(options.Demo);
    session_.Preferences = ReadPreferences(preferencesPath);
    session_.SavePreferences = [preferencesPath](const Preferences& preferences) {
        SavePreferences(preferencesPath, preferences);
    };
}

DialogOpeners Program::Openers() {
    DialogOpeners openers;
    openers.Module = [this](ModuleDialog dialog, QWidget* parent) {
        OpenModuleDialog(dialog, session_, messages_, parent);
    };
    openers.Terminal = [this](QWidget* parent) {
        TerminalForm(session_, messages_, parent, [this] { ShowTraffic(); }).exec();
    };
    openers.Monitor = [this](QWidget* parent) {
        MonitorForm(session_, messages_, parent, SystemTime, OpenKeptHistory).exec();
    };
    openers.Traffic = [this] { ShowTraffic(); };
    openers.LineCheck = [this](QWidget* parent) {
        LineCheckForm(session_, messages_, parent, CheckJson).exec();
    };
    openers.Listen = [this](QWidget* parent) {
        const bool rateIsFixed = RateIsFixed(registry_.Device(session_.Line.CurrentPort));
        ListenForm(session_, messages_, rateIsFixed, parent).exec();
    };
    openers.Report = [this](QWidget* parent) { ShowReport(parent); };
    openers.Replace = [this](QWidget* parent) { ReplaceForm(session_, messages_, parent).exec(); };
    openers.LoopCheck = [this](QWidget* parent) { CheckLoops(session_, messages_, UserName(), parent); };
    openers.BackUp = [this](QWidget* parent) { BackUpToFile(session_, messages_, parent); };
    openers.Compare = [this](QWidget* parent) { CompareWithFile(session_, messages_, parent); };
    openers.Restore = [this](QWidget* parent) { RestoreFromFile(session_, messages_, parent); };
    openers.CloseLineFile = [this] { CloseLineFile(session_); };
    openers.ReadMap = ReadMapFile;
    return openers;
}

// The message of a recording that fails waits until no transaction is going on.
void Program::BeginRecording() {
    if (options_.Recording.Path.empty())
        return;
    const std::int16_t port = session_.Line.CurrentPort;
    recorder_.emplace(session_.OpenFile, options_.Recording.Path,
                      RecordingHead{clock_.UtcMicroseconds(), port, registry_.Device(port)},
                      options_.Recording.Options);
    recorder_->Failed = [this] {
        QMetaObject::invokeMethod(
            &form_, [this] { messages_.Show(recorder_->Failure(), "Error"); }, Qt::QueuedConnection);
    };
    session_.Line.Listeners.push_back(&*recorder_);
}

void Program::ShowTraffic() {
    if (!trafficForm_)
        trafficForm_ = std::make_unique<TrafficForm>(session_, registry_, traffic_,
                                                     [this] { return form_.ListenOnly(); });
    trafficForm_->BringUp();
}

void Program::ShowReport(QWidget* parent) {
    const int port = session_.Line.CurrentPort;
    const std::string device = ShownDevice(registry_.Device(port));
    const ReportFacts offered = {.Path = session_.Tags.Path,
                                 .Port = "COM" + std::to_string(port) + ": " + device,
                                 .Person = session_.UserName};
    ReportForm(session_, messages_, offered, parent).exec();
}

// Its tags are all that a start without it lacks.
void Program::ReopenLineFile() {
    try {
        kavro::ReopenLineFile(session_);
    } catch (const RuntimeFailure& failure) {
        session_.Note = failure.what();
    }
}

void Program::Start() {
    ReopenLineFile();
    // The demo starts on its simulated line, whatever port its settings name.
    form_.Load(options_.Demo ? std::optional(DemoPort) : std::nullopt);
    Guard(messages_, [this] { BeginRecording(); });
    form_.show();
    form_.activateWindow(); // after the messages of the start-up, which had no window to give the focus back
                            // to
}

} // namespace kavro
