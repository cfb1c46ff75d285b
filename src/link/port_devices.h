#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kavro {

/// A serial device that the operating system reports.
struct DetectedDevice {
    std::string Path;         ///< what to open, for example "/dev/ttyUSB0"
    std::string Description;  ///< product text, may be empty
    std::string Manufacturer; ///< may be empty
    std::string SerialNumber; ///< may be empty
    bool Usb = false;         ///< a USB adapter
};

/// Name that stands for the simulated line wherever a device is named.
inline constexpr const char* SimulatedLineDevice = "demo";

/// What stands in front of the path of a recording that is played as a device.
inline constexpr std::string_view ReplayPrefix = "replay:";

/// Whether a device is a recording.
inline bool IsReplay(const std::string& device) {
    return device.starts_with(ReplayPrefix);
}

/// The path of the recording that a device is.
inline std::string ReplayPath(const std::string& device) {
    return device.substr(ReplayPrefix.size());
}

/// What the user is told of commands that a recording does not have; empty for none.
inline std::string NotRecordedText(std::int64_t count) {
    if (count == 0)
        return {};
    return (count == 1 ? "1 command is" : std::to_string(count) + " commands are") +
           std::string(" not in the recording, and got no reply.");
}

/// A device as the user is told of it.
inline std::string ShownDevice(const std::string& device) {
    return device == SimulatedLineDevice ? "Simulated line" : device;
}

/// Which device each COM port is.
class PortDevices {
public:
    virtual ~PortDevices() = default;

    /// Device of COM port 1 to 8: a path, a network address, a recording ("replay:FILE"), or
    /// `SimulatedLineDevice`.
    virtual std::string Device(int port) const = 0;

    /// The serial devices present now, USB adapters first, then by path.
    virtual std::vector<DetectedDevice> Detect() const = 0;

    /// Network addresses that were assigned before, the last one first.
    virtual std::vector<std::string> Recent() const { return {}; }

    /// Commands so far that the recordings being played do not have.
    virtual std::int64_t NotRecorded() const { return 0; }

    /// Makes `device` the device of `port`. When the port is open, the new device is opened before the old
    /// one is closed; a device that cannot be opened throws `RuntimeFailure` and leaves everything as it was.
    virtual void Assign(int port, const std::string& device) = 0;

    /// Keeps the assignments for the next start. Throws `RuntimeFailure` when they cannot be written.
    virtual void Save() = 0;
};

} // namespace kavro
