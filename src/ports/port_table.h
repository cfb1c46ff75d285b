#pragma once

#include "link/serial_port.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace kavro {

class CommPort;

/// Which device each COM port is, shared by the registry and the ports that it made, so that either may be
/// gone first. COM1 stands at index 0.
struct PortTable {
    std::array<std::string, PortTotal> Device{};                    ///< as `PortDevices` tells it
    std::array<CommPort*, PortTotal> Port{};                        ///< ports that exist, else null
    std::function<std::unique_ptr<SerialPort>()> MakeSimulatedPort; ///< a port on the simulated line
    std::int64_t NotRecorded = 0; ///< commands that a recording being played did not have
    std::string ClosedAdvice;     ///< where this program's user opens a port that is closed; may be empty
};

} // namespace kavro
