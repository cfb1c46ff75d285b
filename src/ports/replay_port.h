#pragma once

#include "ports/steady_clock.h"
#include "sim/replayed_line.h"
#include "sim/simulated_port.h"

#include <functional>
#include <string>

namespace kavro {

/// A port on a recording, which is played from its beginning, at the speed that it was recorded at.
class ReplayPort : public SerialPort {
public:
    /// `device`: "replay:" and the path of the recording, which is read now. `notRecorded`: called for each
    /// command that it does not have. Throws `RuntimeFailure` when it cannot be used.
    ReplayPort(const std::string& device, std::function<void()> notRecorded);

    void Settings(const std::string& text) override { port_.Settings(text); }
    void SetCommState(const std::string& text) override { port_.SetCommState(text); }
    void PortOpen(bool open) override { port_.PortOpen(open); }
    bool PortOpen() const override { return port_.PortOpen(); }
    int InBufferCount() override { return port_.InBufferCount(); }
    std::string EmptyInBuffer() override { return port_.EmptyInBuffer(); }
    char Input() override { return port_.Input(); }
    void Output(const std::string& text) override { port_.Output(text); }
    bool WaitForInput(int milliseconds) override { return port_.WaitForInput(milliseconds); }

private:
    SteadyClock clock_;
    ReplayedLine line_;
    SimulatedPort port_;
};

} // namespace kavro
