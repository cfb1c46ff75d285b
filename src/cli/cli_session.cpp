#include "cli/cli_session.h"

#include "cli/cli_text.h"
#include "cli/subcommand.h"
#include "link/network_address.h"
#include "link/port_config.h"
#include "link/runtime_failure.h"
#include "ports/append_file.h"
#include "ports/map_reader.h"
#include "ports/replace_file.h"
#include "ports/settings_folder.h"
#include "sim/demo_line.h"
#include "sim/simulated_port.h"

#include <filesystem>
#include <utility>

namespace kavro {

namespace {

constexpr std::size_t Baud9600Code = 3;
constexpr std::int16_t LongTimeoutFactor = 5; // as in the COM Port dialog

[[noreturn]] void ThrowUnusable(const std::string& configFilePath, const std::string& reason = {}) {
    throw RuntimeFailure("The settings file " + configFilePath + " cannot be used. " + reason +
                         "Correct it, or delete it to begin with default settings.");
}

// Puts COM.CFG into the line's settings; false when there is none. Throws `RuntimeFailure` when it cannot be
// used.
bool LoadSaved(Line& line, const std::string& configFilePath) {
    std::error_code ignored;
    if (!std::filesystem::exists(std::filesystem::u8path(configFilePath), ignored))
        return false;
    PortConfigFile file;
    try {
        file = LoadPortConfig(line, configFilePath, std::nullopt);
    } catch (const RuntimeFailure& failure) {
        ThrowUnusable(configFilePath, failure.what() + std::string(" "));
    }
    if (!ApplyFileTimeouts(line, file))
        ThrowUnusable(configFilePath);
    return true;
}

// Devices without a COM.CFG: the program begins with COM1 then.
std::int16_t PortWithoutSettings() {
    std::error_code ignored;
    if (!std::filesystem::exists(std::filesystem::u8path(PortsFilePath(false)), ignored))
        throw RuntimeFailure(
            "No port is set up. Name one, for example --port 1=/dev/ttyUSB0, or try --demo.");
    return 1;
}

} // namespace

CliSession::CliSession(const LineOptions& options)
    : demoLine_(DemoLine()), registry_(PortsFilePath(options.Demo), options.Devices,
                                       [this] { return std::make_unique<SimulatedPort>(demoLine_, clock_); }),
      recording_(options.Recording), Session(registry_.Ports(), clock_) {
    Session.ReplaceFile = ReplaceFile;
    Session.LineEnd = SystemLineEnd;
    Session.OpenFile = OpenAppendFile;
    Session.ConfigFilePath = ConfigFilePath(options.Demo);
    Session.Line.Bounded = true;
    Session.Line.EchoFound = [told = false]() mutable {
        if (!std::exchange(told, true))
            PrintNote("The adapter hands back every character sent (echo). The echo is taken away.");
    };
    LoadSettings(options);
    rateChosen_ = options.RateChosen;
}

int CliSession::Run(const std::function<int()>& work) {
    OpenPort();
    BeginRecording();
    int exit = ExitPortTrouble;
    try {
        exit = work();
    } catch (const RuntimeFailure&) {
        EndRecording();
        throw;
    }
    return EndRecording() ? exit : ExitPortTrouble;
}

// After the port is open: a wrong device leaves a recording that is to be overwritten as it was.
void CliSession::BeginRecording() {
    if (recording_.Path.empty())
        return;
    const RecordingHead head = {clock_.UtcMicroseconds(), Session.Line.CurrentPort, Device()};
    recorder_.emplace(Session.OpenFile, recording_.Path, head, recording_.Options);
    Session.Line.Listeners.push_back(&*recorder_);
}

// Tells what came of it, and of a recording that was played; whether all was well.
bool CliSession::EndRecording() {
    if (const std::string text = NotRecordedText(registry_.NotRecorded()); !text.empty())
        PrintNote(text);
    if (!recorder_)
        return true;
    std::erase(Session.Line.Listeners, &*recorder_);
    recorder_->End();
    if (recorder_->Failure().empty())
        return true;
    PrintNote(recorder_->Failure());
    return false;
}

void CliSession::OpenPort() {
    if (!settingsFailure_.empty())
        throw RuntimeFailure(settingsFailure_);
    if (rateChosen_ && RateIsFixed(Device()))
        PrintNote(FixedRateText);
    Session.Line.CommPort(Session.Line.CurrentPort).PortOpen(true);
}

void CliSession::LoadSettings(const LineOptions& options) {
    Line& line = Session.Line;
    bool saved = false;
    try {
        saved = LoadSaved(line, Session.ConfigFilePath);
    } catch (const RuntimeFailure& failure) {
        if (!options.Port) {
            settingsFailure_ = failure.what(); // told on opening: the command line itself is right
            return;
        }
        PrintNote(std::string(failure.what()) + " Going on with default settings.");
    }
    if (saved && line.CurrentPort == options.Port.value_or(line.CurrentPort))
        return;
    line.CurrentPort = options.Port ? *options.Port : PortWithoutSettings();
    PortSettingsRecord& settings = line.SettingsOf(line.CurrentPort);
    settings = {};
    settings.DataBits = 8;
    settings.BaudEnabled[Baud9600Code] = 1;
}

void UseMap(Session& session, const std::string& path) {
    const ModuleMap map = ReadMapFile(path);
    if (!map.ChecksumsKnown)
        throw RuntimeFailure("The map file \"" + path +
                             "\" is a text, which does not tell which modules use checksums. kavroctl search "
                             "--refresh MAP --json prints a map from it that does.");
    TakeOver(session, map);
}

void SetTimeouts(Line& line, std::int16_t timeoutMs) {
    line.ReplyTimeout = timeoutMs;
    line.LongReplyTimeout = static_cast<std::int16_t>(LongTimeoutFactor * timeoutMs);
}

} // namespace kavro
