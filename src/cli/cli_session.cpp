#include "cli/cli_session.h"

#include "cli/cli_text.h"
#include "cli/saved_port.h"
#include "link/runtime_failure.h"
#include "ports/replace_file.h"
#include "ports/settings_folder.h"
#include "sim/demo_line.h"
#include "sim/simulated_port.h"

#include <filesystem>

namespace kavro {

namespace {

constexpr std::size_t Baud9600Code = 3;

// A COM.CFG that cannot be used matters only to a command line that names no port.
std::optional<SavedPort> SavedSettings(const std::string& configFilePath, bool portNamed) {
    try {
        return ReadSavedPort(configFilePath);
    } catch (const RuntimeFailure& failure) {
        if (!portNamed)
            throw;
        PrintNote(std::string(failure.what()) + " Going on with default settings.");
        return std::nullopt;
    }
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
      Session(registry_.Ports(), clock_) {
    Session.ReplaceFile = ReplaceFile;
    Session.ConfigFilePath = ConfigFilePath(options.Demo);
    LoadSettings(options);
}

void CliSession::LoadSettings(const LineOptions& options) {
    Line& line = Session.Line;
    const auto saved = SavedSettings(Session.ConfigFilePath, options.Port.has_value());
    if (options.Port)
        line.CurrentPort = *options.Port;
    else
        line.CurrentPort = saved ? saved->Port : PortWithoutSettings();
    if (saved) {
        line.ReplyTimeout = saved->ReplyTimeout;
        line.LongReplyTimeout = saved->LongReplyTimeout;
    }
    PortSettingsRecord& settings = line.SettingsOf(line.CurrentPort);
    if (saved && saved->Port == line.CurrentPort) {
        settings = saved->Settings;
    } else {
        settings.DataBits = 8;
        settings.BaudEnabled[Baud9600Code] = 1;
    }
}

} // namespace kavro
