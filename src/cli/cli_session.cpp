#include "cli/cli_session.h"

#include "cli/cli_text.h"
#include "link/port_config.h"
#include "link/runtime_failure.h"
#include "ports/replace_file.h"
#include "ports/settings_folder.h"
#include "sim/demo_line.h"
#include "sim/simulated_port.h"

#include <filesystem>

namespace kavro {

namespace {

constexpr std::size_t Baud9600Code = 3;

// Puts COM.CFG into the line's settings; false when there is none. One that cannot be used matters only to a
// command line that names no port.
bool LoadSaved(Line& line, const std::string& configFilePath, bool portNamed) {
    std::error_code ignored;
    if (!std::filesystem::exists(std::filesystem::u8path(configFilePath), ignored))
        return false;
    try {
        if (ApplyFileTimeouts(line, LoadPortConfig(line, configFilePath, std::nullopt)))
            return true;
        throw RuntimeFailure("The settings file " + configFilePath +
                             " cannot be used. Correct it, or delete it to begin with default settings.");
    } catch (const RuntimeFailure& failure) {
        if (!portNamed)
            throw;
        PrintNote(std::string(failure.what()) + " Going on with default settings.");
        return false;
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
    const bool saved = LoadSaved(line, Session.ConfigFilePath, options.Port.has_value());
    if (saved && line.CurrentPort == options.Port.value_or(line.CurrentPort))
        return;
    line.CurrentPort = options.Port ? *options.Port : PortWithoutSettings();
    PortSettingsRecord& settings = line.SettingsOf(line.CurrentPort);
    settings = {};
    settings.DataBits = 8;
    settings.BaudEnabled[Baud9600Code] = 1;
}

} // namespace kavro
