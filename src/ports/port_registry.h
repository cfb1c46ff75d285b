#pragma once

#include "link/port_devices.h"
#include "ports/port_table.h"

#include <map>
#include <memory>
#include <string>
#include <utility>

namespace kavro {

/// Reads a command-line assignment "N=DEVICE": port 1 to 8 and its device, a path or a network address.
/// Throws `RuntimeFailure` that says what is wrong with it.
std::pair<int, std::string> ParsePortOption(const std::string& text);

/// Which device each COM port is: what the command line says, else what ports.ini says, else the system's
/// own serial ports. Registry and ports may end in any order.
class PortRegistry : public PortDevices {
public:
    /// `iniPath`: where the user's choices are kept (COM1=/dev/ttyUSB0 and so on, and the network addresses
    /// last chosen), read now; nothing readable there stands for no choice. `commandLine`: devices by port
    /// number, for this run only. `makeSimulatedPort`: makes a port on the simulated line. `closedAdvice`:
    /// the sentence that follows a failure which leaves a port closed, as only the program knows where its
    /// user opens one.
    PortRegistry(std::string iniPath, const std::map<int, std::string>& commandLine,
                 std::function<std::unique_ptr<SerialPort>()> makeSimulatedPort,
                 std::string closedAdvice = {});

    std::string Device(int port) const override;
    std::vector<DetectedDevice> Detect() const override;
    void Assign(int port, const std::string& device) override;
    std::vector<std::string> Recent() const override { return recent_; }
    std::int64_t NotRecorded() const override { return table_->NotRecorded; }
    /// Writes ports.ini. A device of the command line is not written unless the user chose it himself.
    void Save() override;

    /// COM1 to COM8. Ports made by an earlier call keep their devices but follow `Assign` no more.
    SerialPorts Ports() const;

private:
    void NoteRecent(const std::string& device);

    std::string iniPath_;
    std::map<int, std::string> commandLine_; // not overruled by a choice that was saved
    std::vector<std::string> recent_;        // network addresses, the last one first
    std::shared_ptr<PortTable> table_;
};

} // namespace kavro
