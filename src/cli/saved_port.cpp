#include "cli/saved_port.h"

#include "link/messages.h"
#include "link/port_config.h"
#include "link/runtime_failure.h"

#include <filesystem>

namespace kavro {

namespace {

// COM.CFG is read onto a line, and that opens its port; here nothing must be opened.
class IdlePort : public SerialPort {
public:
    void Settings(const std::string&) override {}
    void SetCommState(const std::string&) override {}
    void PortOpen(bool) override {}
    bool PortOpen() const override { return false; }
    int InBufferCount() override { return 0; }
    void EmptyInBuffer() override {}
    char Input() override { return 0; }
    void Output(const std::string&) override {}
    bool WaitForInput(int) override { return false; }
};

class HasMessage : public Messages {
public:
    bool Shown = false;
    void Show(const std::string&, const std::string&) override { Shown = true; }
};

} // namespace

std::optional<SavedPort> ReadSavedPort(const std::string& configFilePath) {
    std::error_code ignored;
    if (!std::filesystem::exists(std::filesystem::u8path(configFilePath), ignored))
        return std::nullopt;
    SerialPorts ports;
    for (auto& port : ports)
        port = std::make_unique<IdlePort>();
    SteadyClock clock;
    Line line(std::move(ports), clock);
    HasMessage messages;
    ReadPortConfig(line, configFilePath, std::nullopt, messages, [] {});
    if (messages.Shown) // its stand-ins are for a user who is asked for the port next
        throw RuntimeFailure("The settings file " + configFilePath +
                             " cannot be used. Correct it, or delete it to begin with default settings.");
    return SavedPort{line.CurrentPort, line.SettingsOf(line.CurrentPort), line.ReplyTimeout,
                     line.LongReplyTimeout};
}

} // namespace kavro
