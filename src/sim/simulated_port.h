#pragma once

#include "link/clock.h"
#include "link/serial_port.h"
#include "sim/transmission.h"

namespace kavro {

/// A serial port with a simulated line behind it. Characters take their real time on the clock: real time on
/// the steady clock, none at all on a virtual one. Line and clock must outlive the port.
class SimulatedPort : public SerialPort {
public:
    SimulatedPort(SimulatedLine& line, Clock& clock);

    void Settings(const std::string& text) override;
    void SetCommState(const std::string& text) override { Settings(text); }
    void PortOpen(bool open) override;
    bool PortOpen() const override { return open_; }
    int InBufferCount() override;
    std::string EmptyInBuffer() override;
    char Input() override;
    void Output(const std::string& text) override;
    bool WaitForInput(int milliseconds) override;

private:
    void RequireOpen();

    SimulatedLine& line_;
    Clock& clock_;
    Transmission transmission_;
    int baud_ = 9600;
    bool open_ = false;
    bool inReply_ = false; // the last character taken was not the end of its line
    int unplugCount_ = 0;  // of the line, when the port was opened
};

} // namespace kavro
